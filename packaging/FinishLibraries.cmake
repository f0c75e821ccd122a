# Adds what CPack cannot write to the library packages: that those of several architectures may be
# installed side by side. Removes the scripts that CPack adds for ldconfig, because the trigger does
# their work.

foreach(package IN LISTS CPACK_PACKAGE_FILES)
    if(NOT package MATCHES "/lib[^/]+$")
        continue()
    endif()
    set(tree ${CPACK_TEMPORARY_DIRECTORY}/library)
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)
    file(READ ${tree}/DEBIAN/control control)
    file(WRITE ${tree}/DEBIAN/control "Multi-Arch: same\n${control}")
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${tree} ${package}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${tree})
endforeach()
