# Refuses builds that fetch things: packages come from the system, before the build.

cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE files "${SOURCE_DIR}/src/CMakeLists.txt" "${SOURCE_DIR}/tests/CMakeLists.txt"
    "${SOURCE_DIR}/fuzz/CMakeLists.txt" "${SOURCE_DIR}/bench/CMakeLists.txt" "${SOURCE_DIR}/po/CMakeLists.txt"
    "${SOURCE_DIR}/cmake/*.cmake")
list(REMOVE_ITEM files "${CMAKE_CURRENT_LIST_FILE}")
foreach(file IN LISTS files ITEMS "${SOURCE_DIR}/CMakeLists.txt" "${SOURCE_DIR}/CMakePresets.json")
    file(READ "${file}" text)
    if(text MATCHES "FetchContent|ExternalProject|DOWNLOAD|CPMAddPackage|git clone|curl |wget |pip install|apt-get")
        message(FATAL_ERROR "${file}: \"${CMAKE_MATCH_0}\": the build may not use the network or install packages")
    endif()
endforeach()
