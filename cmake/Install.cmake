# Installs the files by which CMake and pkg-config find the library. Each file finds the others from
# its own place, so that the whole tree can be moved.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/dictionary)
set(pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(EXPORT dictionaryTargets NAMESPACE dictionary::
    DESTINATION ${package_dir} COMPONENT development)
set(version_file ${PROJECT_BINARY_DIR}/dictionaryConfigVersion.cmake)
write_basic_package_version_file(${version_file} COMPATIBILITY SameMajorVersion)
install(FILES ${version_file} ${CMAKE_CURRENT_LIST_DIR}/dictionaryConfig.cmake
    DESTINATION ${package_dir} COMPONENT development)

file(RELATIVE_PATH prefix_from_pc /prefix/${pc_dir} /prefix)
string(REGEX REPLACE "/$" "" prefix_from_pc ${prefix_from_pc})
configure_file(${CMAKE_CURRENT_LIST_DIR}/dictionary.pc.in ${PROJECT_BINARY_DIR}/dictionary.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/dictionary.pc DESTINATION ${pc_dir} COMPONENT development)
