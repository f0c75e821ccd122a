# Debian packages, one per component; scripts/package makes them. CPack takes the files from the
# install rules. debhelper would need a list of the files of each package.

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE ${PROJECT_NAME})
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The dictionary library's authors <authors@dictionary.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Every package has its own first line.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")

# Dependencies come from the binaries. Other packages that link to the library depend on it as the
# file `shlibs` in its package says.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
get_target_property(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS dictionary BINARY_DIR)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/triggers)

# Describes the package of a component; further arguments are the components it depends on.
macro(describe_package component name section description)
    set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section})
    set(CPACK_DEBIAN_${component}_DESCRIPTION "${description}")
    set(CPACK_COMPONENT_${component}_DEPENDS ${ARGN})
endmacro()

set(about "It turns a text dictionary (one line per record: a key, then its data,
separated by tabs) into a compact binary image, maps the image back
read-only and finds in a UTF-8 text every key with its position and data,
one key exactly, or the longest words one after the other. Any number of
threads and processes can search one image.
")
describe_package(RUNTIME libdictionary${PROJECT_VERSION_MAJOR} libs
    "library of double-array trie dictionaries - shared library
${about}
This package has the shared library.")
describe_package(DEVELOPMENT libdictionary-dev libdevel
    "library of double-array trie dictionaries - development files
${about}
This package has the headers, the static library and the files by which CMake
and pkg-config find them."
    runtime)
describe_package(TOOL dictool utils
    "build, check and search double-array trie dictionaries
${about}
This package has the command line."
    runtime)
describe_package(SQLITE libsqlite3-mod-dictionary database
    "words of a dictionary in SQLite - loadable extension
${about}
This package has an extension for SQLite: a tokenizer that lets FTS5 find words
in text without blanks, and functions that look into dictionaries from SQL."
    runtime)
describe_package(PYTHON python3-dictionary python
    "library of double-array trie dictionaries - Python 3 package
${about}
This package has the Python package."
    runtime)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= 3.11)")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS python3-distributed)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${CMAKE_CURRENT_LIST_DIR}/python/postinst ${CMAKE_CURRENT_LIST_DIR}/python/prerm)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The note beside the package makes it known to pip and to importlib.metadata.
set(python_note ${PROJECT_BINARY_DIR}/python/${PROJECT_NAME}-${PROJECT_VERSION}.dist-info)
configure_file(${CMAKE_CURRENT_LIST_DIR}/python/METADATA.in ${python_note}/METADATA @ONLY)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/bindings/python/dictionary ${python_note}
    DESTINATION lib/python3/dist-packages COMPONENT python EXCLUDE_FROM_ALL
    PATTERN __pycache__ EXCLUDE
    PATTERN libdictionary.so.1 EXCLUDE)

# The first runs over the files before they are packed, the second over the packages.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/FinishFiles.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/FinishLibraries.cmake)
set(CPACK_DICTIONARY_PACKAGING_DIR ${CMAKE_CURRENT_LIST_DIR})

include(CPack)
