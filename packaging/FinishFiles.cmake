# Brings the files of the packages into the form that Debian expects: a changelog and a licence in
# each, compressed manual pages, and a static library without debug information.

file(STRINGS ${CPACK_DICTIONARY_PACKAGING_DIR}/changelog newest LIMIT_COUNT 1)
if(NOT newest MATCHES "\\(${CPACK_PACKAGE_VERSION}\\)")
    message(FATAL_ERROR "packaging/changelog does not begin with version ${CPACK_PACKAGE_VERSION}")
endif()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(files ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX})
    set(documents ${files}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    file(COPY ${CPACK_DICTIONARY_PACKAGING_DIR}/copyright ${CPACK_DICTIONARY_PACKAGING_DIR}/changelog
        DESTINATION ${documents} FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

    file(GLOB manuals ${files}/share/man/man*/*.[1-8])
    execute_process(COMMAND gzip -9nf ${documents}/changelog ${manuals} COMMAND_ERROR_IS_FATAL ANY)

    file(GLOB_RECURSE archives ${files}/lib/*.a)
    foreach(archive IN LISTS archives)
        execute_process(COMMAND strip --strip-debug --remove-section=.comment
                --enable-deterministic-archives ${archive}
            COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
endforeach()
