# Found by find_package(dictionary): the targets dictionary::dictionary, the shared library, and
# dictionary::dictionary_static.
include(${CMAKE_CURRENT_LIST_DIR}/dictionaryTargets.cmake)

# A project that is only in C links with the C compiler, which leaves out the C++ libraries.
get_property(languages GLOBAL PROPERTY ENABLED_LANGUAGES)
if(NOT CXX IN_LIST languages)
    target_link_libraries(dictionary::dictionary_static INTERFACE stdc++ m)
endif()
