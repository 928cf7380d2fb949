# What `cmake --install` puts where. Everything finds the rest from its own place on, so that the prefix, or DESTDIR, may be
# anywhere, and may be moved later. A component is a package of Packages.cmake; "licences" is in none, for packages tell their
# licences in a way of their own.

install(TARGETS px_apps_pxvis_main RUNTIME DESTINATION "${PXVIS_INSTALL_BINDIR}" COMPONENT pxvis)
install(TARGETS px_apps_player_main RUNTIME DESTINATION "${PXVIS_INSTALL_BINDIR}" COMPONENT pxvis-player)
install(TARGETS px_Plugins_Visualization_library LIBRARY DESTINATION "${PXVIS_INSTALL_MODULEDIR}" COMPONENT libpxvis)
install(TARGETS px_siblings_image px_siblings_tools px_siblings_reader
    LIBRARY DESTINATION "${PXVIS_INSTALL_MODULEDIR}" COMPONENT pxvis-modules)

# All of these, without the tests.
add_custom_target(installed DEPENDS px_apps_pxvis_main px_apps_player_main px_Plugins_Visualization_library
    px_siblings_image px_siblings_tools px_siblings_reader)

install(DIRECTORY "${CMAKE_SOURCE_DIR}/data/" DESTINATION "${PXVIS_INSTALL_DATADIR}" COMPONENT pxvis-data
    PATTERN kicks.txt EXCLUDE)
install(DIRECTORY "${CMAKE_BINARY_DIR}/locale/" DESTINATION "${PXVIS_INSTALL_LOCALEDIR}" COMPONENT pxvis-data OPTIONAL
    FILES_MATCHING PATTERN "*.mo")
install(FILES "${CMAKE_SOURCE_DIR}/docs/man/pxvis.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT pxvis)
install(FILES "${CMAKE_SOURCE_DIR}/docs/man/pxvis-player.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1"
    COMPONENT pxvis-player)

# The player among the programs of a desktop.
set(_desktop "${CMAKE_SOURCE_DIR}/packaging/desktop")
install(FILES "${_desktop}/pxvis-player.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications"
    COMPONENT pxvis-player)
install(FILES "${_desktop}/org.pxvis.Player.metainfo.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo"
    COMPONENT pxvis-player)
install(DIRECTORY "${_desktop}/icons/" DESTINATION "${CMAKE_INSTALL_DATADIR}/icons" COMPONENT pxvis-player)

# What people read: of scripts with the data, of the contract with its headers.
install(FILES "${CMAKE_SOURCE_DIR}/README.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT pxvis-data)
install(DIRECTORY "${CMAKE_SOURCE_DIR}/docs/" DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs" COMPONENT pxvis-data
    FILES_MATCHING PATTERN scripting.md PATTERN undertow.jpg PATTERN "examples/*" PATTERN man EXCLUDE PATTERN host EXCLUDE)
install(FILES "${CMAKE_SOURCE_DIR}/ARCHITECTURE.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT libpxvis-dev)
install(DIRECTORY "${CMAKE_SOURCE_DIR}/docs/" DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs" COMPONENT libpxvis-dev
    PATTERN scripting.md EXCLUDE PATTERN undertow.jpg EXCLUDE PATTERN examples EXCLUDE PATTERN man EXCLUDE)
install(FILES "${CMAKE_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT licences)
install(DIRECTORY "${CMAKE_SOURCE_DIR}/LICENSES" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT licences)

# Where the library for players lies, and its headers.
install(DIRECTORY "${CMAKE_SOURCE_DIR}/include/pxvis" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT libpxvis-dev
    FILES_MATCHING PATTERN "*.h")
cmake_path(SET _pkgconfig "${PXVIS_INSTALL_MODULEDIR}")
cmake_path(GET _pkgconfig PARENT_PATH _pkgconfig)
string(APPEND _pkgconfig "/pkgconfig")
file(RELATIVE_PATH PXVIS_PREFIX_FROM_PKGCONFIG "/${_pkgconfig}" "/")
string(REGEX REPLACE "/$" "" PXVIS_PREFIX_FROM_PKGCONFIG "${PXVIS_PREFIX_FROM_PKGCONFIG}")
configure_file("${CMAKE_SOURCE_DIR}/cmake/pxvis.pc.in" "${CMAKE_BINARY_DIR}/pxvis.pc" @ONLY)
install(FILES "${CMAKE_BINARY_DIR}/pxvis.pc" DESTINATION "${_pkgconfig}" COMPONENT libpxvis-dev)
