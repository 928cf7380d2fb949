# What `cmake --install` puts where. Everything finds the rest from its own place on, so that the prefix, or DESTDIR, may be
# anywhere, and may be moved later.

install(TARGETS px_apps_pxvis_main RUNTIME DESTINATION "${PXVIS_INSTALL_BINDIR}")
foreach(module px_Plugins_Visualization_library px_siblings_image px_siblings_tools px_siblings_reader)
    if(TARGET ${module})
        install(TARGETS ${module} LIBRARY DESTINATION "${PXVIS_INSTALL_MODULEDIR}")
    endif()
endforeach()

# All of these, without the tests.
add_custom_target(installed DEPENDS px_apps_pxvis_main px_Plugins_Visualization_library px_siblings_image
    px_siblings_tools px_siblings_reader)

install(DIRECTORY "${CMAKE_SOURCE_DIR}/data/" DESTINATION "${PXVIS_INSTALL_DATADIR}" PATTERN kicks.txt EXCLUDE)
install(DIRECTORY "${CMAKE_BINARY_DIR}/locale/" DESTINATION "${PXVIS_INSTALL_LOCALEDIR}" OPTIONAL
    FILES_MATCHING PATTERN "*.mo")
install(DIRECTORY "${CMAKE_SOURCE_DIR}/include/pxvis" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    FILES_MATCHING PATTERN "*.h")
install(DIRECTORY "${CMAKE_SOURCE_DIR}/docs/man/" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" OPTIONAL
    FILES_MATCHING PATTERN "*.1")
install(FILES "${CMAKE_SOURCE_DIR}/README.md" "${CMAKE_SOURCE_DIR}/ARCHITECTURE.md" "${CMAKE_SOURCE_DIR}/LICENSE"
    DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY "${CMAKE_SOURCE_DIR}/LICENSES" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY "${CMAKE_SOURCE_DIR}/docs/" DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs" PATTERN man EXCLUDE)

# Where the library for players lies, and its headers.
cmake_path(SET _pkgconfig "${PXVIS_INSTALL_MODULEDIR}")
cmake_path(GET _pkgconfig PARENT_PATH _pkgconfig)
string(APPEND _pkgconfig "/pkgconfig")
file(RELATIVE_PATH PXVIS_PREFIX_FROM_PKGCONFIG "/${_pkgconfig}" "/")
string(REGEX REPLACE "/$" "" PXVIS_PREFIX_FROM_PKGCONFIG "${PXVIS_PREFIX_FROM_PKGCONFIG}")
configure_file("${CMAKE_SOURCE_DIR}/cmake/pxvis.pc.in" "${CMAKE_BINARY_DIR}/pxvis.pc" @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/pxvis.pc" DESTINATION "${_pkgconfig}")
