# PXVIS_INSTALL_BINDIR, _MODULEDIR, _DATADIR and _LOCALEDIR: the folders of GNUInstallDirs that the programs look for at run
# time, relative to the prefix, which may be moved later.

function(_pxvis_relative_to_prefix name out)
    set(folder "${CMAKE_INSTALL_${name}}")
    if(IS_ABSOLUTE "${folder}")
        file(RELATIVE_PATH folder "${CMAKE_INSTALL_PREFIX}" "${folder}")
    endif()
    cmake_path(NORMAL_PATH folder)
    string(REGEX REPLACE "/$" "" folder "${folder}")
    if(folder MATCHES "^(|\\.|\\.\\.(/.*)?)$")
        message(FATAL_ERROR "CMAKE_INSTALL_${name} is ${CMAKE_INSTALL_${name}}, but pxvis finds its files from its prefix "
            "on: the folder must lie below CMAKE_INSTALL_PREFIX, ${CMAKE_INSTALL_PREFIX}, such as \"bin\" or \"lib\"")
    endif()
    set(${out} "${folder}" PARENT_SCOPE)
endfunction()

_pxvis_relative_to_prefix(BINDIR PXVIS_INSTALL_BINDIR)
_pxvis_relative_to_prefix(LIBDIR PXVIS_INSTALL_MODULEDIR)
_pxvis_relative_to_prefix(DATADIR PXVIS_INSTALL_DATADIR)
_pxvis_relative_to_prefix(LOCALEDIR PXVIS_INSTALL_LOCALEDIR)
string(APPEND PXVIS_INSTALL_MODULEDIR "/pxvis")
string(APPEND PXVIS_INSTALL_DATADIR "/pxvis")
if(PXVIS_PRINT_FOLDERS) # for the tests
    message("${PXVIS_INSTALL_BINDIR} ${PXVIS_INSTALL_MODULEDIR} ${PXVIS_INSTALL_DATADIR} ${PXVIS_INSTALL_LOCALEDIR}")
endif()
