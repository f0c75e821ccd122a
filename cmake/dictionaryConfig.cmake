# Found by find_package(dictionary): the targets dictionary::dictionary, the shared library, and
# dictionary::dictionary_static.
include(${CMAKE_CURRENT_LIST_DIR}/dictionaryTargets.cmake)

# A project in C alone links with the C compiler, which would leave out what C++ brings along.
get_property(languages GLOBAL PROPERTY ENABLED_LANGUAGES)
if(NOT CXX IN_LIST languages)
    target_link_libraries(dictionary::dictionary_static INTERFACE stdc++ m)
endif()
