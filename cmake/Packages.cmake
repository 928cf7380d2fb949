# Debian packages of what Install.cmake installs, one a component:
#
#   cmake --build build/release --target packages      leaves them in build/release/packages
#
# Their version is that of packaging/debian/changelog.

file(STRINGS "${CMAKE_SOURCE_DIR}/packaging/debian/changelog" _newest LIMIT_COUNT 1)
if(NOT _newest MATCHES "^pxvis \\(${PROJECT_VERSION}-([0-9a-z.]+)\\)")
    message(FATAL_ERROR "packaging/debian/changelog begins with \"${_newest}\", but the project is ${PROJECT_VERSION}")
endif()
set(CPACK_DEBIAN_PACKAGE_RELEASE "${CMAKE_MATCH_1}")
set(_same "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME pxvis)
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_PACKAGE_CONTACT "pxvis developers <developers@pxvis.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_SOURCE_DIR}/cmake/FinishPackages.cmake")
set(CPACK_PXVIS_DEBIAN_FOLDER "${CMAKE_SOURCE_DIR}/packaging/debian")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE pxvis)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_COMPONENTS_ALL "")

# One package, named as its component. DEPENDS, RECOMMENDS, SUGGESTS: besides the libraries that its binaries are linked to.
# No semicolons: CMake would split the texts there.
function(_pxvis_package name)
    cmake_parse_arguments(arg "ARCHITECTURE_ALL" "SECTION" "DEPENDS;RECOMMENDS;SUGGESTS;DESCRIPTION" ${ARGN})
    string(TOUPPER "${name}" upper)
    set(variable "CPACK_DEBIAN_${upper}")
    foreach(relation DEPENDS RECOMMENDS SUGGESTS)
        list(JOIN arg_${relation} ", " text)
        set(${variable}_PACKAGE_${relation} "${text}" PARENT_SCOPE)
    endforeach()
    if(arg_ARCHITECTURE_ALL)
        set(${variable}_PACKAGE_ARCHITECTURE all PARENT_SCOPE)
        set(${variable}_PACKAGE_SHLIBDEPS OFF PARENT_SCOPE)
    endif()
    list(JOIN arg_DESCRIPTION "\n" description)
    set(${variable}_PACKAGE_NAME "${name}" PARENT_SCOPE)
    set(${variable}_PACKAGE_SECTION "${arg_SECTION}" PARENT_SCOPE)
    set(${variable}_DESCRIPTION "${description}" PARENT_SCOPE)
    set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} "${name}" PARENT_SCOPE)
endfunction()

# What songs cannot be decoded without; and what a server without patented formats can do without, H.264 and AAC first.
set(_codecs gstreamer1.0-plugins-base gstreamer1.0-plugins-good)
set(_more_codecs gstreamer1.0-libav gstreamer1.0-plugins-ugly)

_pxvis_package(pxvis SECTION video
    DEPENDS "pxvis-modules ${_same}" "pxvis-data ${_same}" ${_codecs}
    RECOMMENDS ${_more_codecs}
    SUGGESTS pxvis-player
    DESCRIPTION "turn songs into videos that move with the music"
        "pxvis makes music visible: with one command a song becomes a video, on a"
        "machine that needs neither a graphics card nor a display. The pictures come"
        "from small scripts of layers, components and short equations that hear the"
        "beat. The same song and script give the same pictures, bit for bit."
        "."
        "This package has the command line. It renders videos and pictures, checks"
        "scripts, also for flashing light that can harm people, and shows what"
        "scripts hear.")

_pxvis_package(pxvis-player SECTION sound
    DEPENDS "libpxvis ${_same}" ${_codecs}
    RECOMMENDS ${_more_codecs} gstreamer1.0-alsa "default-dbus-session-bus | dbus-session-bus"
    SUGGESTS pxvis xwayland
    DESCRIPTION "music player that shows moving pictures to what it plays"
        "pxvis makes music visible. Its player plays songs, folders and playlists, or"
        "listens to whatever the computer plays, and shows pictures that move with"
        "the music, in its window or on the full screen. It rates songs and scripts,"
        "and desktops control it by MPRIS.")

_pxvis_package(libpxvis SECTION libs
    DEPENDS "pxvis-modules ${_same}" "pxvis-data ${_same}"
    RECOMMENDS libegl1 libgl1-mesa-dri
    DESCRIPTION "music visualizations for players"
        "pxvis makes music visible. This package has the library that players load at"
        "run time. It shows scripted pictures in a window of the player, in time with"
        "what the player hears.")

_pxvis_package(pxvis-modules SECTION libs
    RECOMMENDS webp-pixbuf-loader
    DESCRIPTION "music visualizations, modules for pictures, settings and files"
        "pxvis makes music visible. This package has the modules that its programs and"
        "its library for players load at run time.")

_pxvis_package(pxvis-data SECTION video ARCHITECTURE_ALL
    DESCRIPTION "music visualizations, scripts and demo song"
        "pxvis makes music visible. This package has the scripts that draw its pictures,"
        "a song to try them with, translations, and a page that teaches to write"
        "scripts, with examples.")

_pxvis_package(libpxvis-dev SECTION libdevel
    DEPENDS "libpxvis ${_same}"
    SUGGESTS pxvis
    DESCRIPTION "music visualizations for players, headers and documents"
        "pxvis makes music visible. This package is for authors of players that show"
        "its visualizations: the contract between the two as C++ headers, a page that"
        "explains it, and the source of a small player in plain Xlib.")

include(CPack)

# Makes them from nothing, so that none of another version lies beside them.
add_custom_target(packages
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${CPACK_PACKAGE_DIRECTORY}"
    COMMAND "${CMAKE_CPACK_COMMAND}" -G DEB --config "${CMAKE_BINARY_DIR}/CPackConfig.cmake"
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${CPACK_PACKAGE_DIRECTORY}/_CPack_Packages"
    WORKING_DIRECTORY "${CMAKE_BINARY_DIR}" COMMENT "Making Debian packages" VERBATIM)
add_dependencies(packages installed)
