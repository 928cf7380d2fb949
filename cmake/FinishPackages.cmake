# Run by CPack once each package's files lie in a folder of their own: adds what only packages have, and compresses what
# their users expect compressed.

# Without the latter two CPack makes packages that depend on no libraries, and says nothing.
foreach(program gzip dpkg-shlibdeps file)
    find_program(${program} ${program})
    if(NOT ${program})
        message(FATAL_ERROR "Making packages needs ${program}: install the Debian packages gzip, dpkg-dev and file")
    endif()
endforeach()

foreach(package IN LISTS CPACK_COMPONENTS_ALL)
    set(root "${CPACK_TEMPORARY_DIRECTORY}/${package}${CPACK_PACKAGING_INSTALL_PREFIX}")
    set(documents "${root}/share/doc/${package}")
    file(MAKE_DIRECTORY "${documents}")
    file(COPY "${CPACK_PXVIS_DEBIAN_FOLDER}/copyright" DESTINATION "${documents}"
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    file(COPY_FILE "${CPACK_PXVIS_DEBIAN_FOLDER}/changelog" "${documents}/changelog.Debian")
    file(GLOB compressed "${documents}/changelog.Debian" "${root}/share/man/man1/*.1")
    # Without name and time of the file, so that the same files give the same package.
    execute_process(COMMAND "${gzip}" -9nf ${compressed} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
