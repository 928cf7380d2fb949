# The two functions that every folder uses, and the flags that every target shares.
#
#   oq_library(<folder> [KIND STATIC|MODULE|SHARED|EXECUTABLE] [DEPENDS <folders>] [LIBRARIES <targets of others>]
#       [OUTPUT_NAME <name>] [EXPORTS <symbols>] [MOC])
#   oq_test(<folder> [DEPENDS <folders>] [LIBRARIES <targets of others>] [MODULES <folders>] [LABELS <labels>]
#       [ENVIRONMENT <NAME=value>])
#
# A folder src/a/b is the target px_a_b; its sources are all *.cpp in it. DEPENDS names the folders it
# may include; CheckLayers.cmake holds every #include against the declared folders. EXPORTS is all that a
# module or shared library shows. MOC: its classes have signals of Qt's. MODULES are loaded by the test at run time and built before it.

if(NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(PXVIS_CCACHE ccache)
    if(PXVIS_CCACHE)
        set(CMAKE_CXX_COMPILER_LAUNCHER "${PXVIS_CCACHE}")
    endif()
endif()

set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

add_library(px_flags INTERFACE)
target_compile_features(px_flags INTERFACE cxx_std_20)
# Pictures are the same bits everywhere: no fused multiply-add, no reordering of arithmetic.
target_compile_options(px_flags INTERFACE -ffp-contract=off -fno-math-errno -Wall -Wextra -Wpedantic
    $<$<CONFIG:Debug>:-Og -g1>
    $<$<CONFIG:Release>:-O3 -g1>
    $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
# GCC 12 sees overlaps in the standard library's string concatenation that can't happen (its bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(px_flags INTERFACE -Wno-restrict)
endif()
target_include_directories(px_flags INTERFACE "${CMAKE_SOURCE_DIR}/src" "${CMAKE_SOURCE_DIR}/include")
if(PXVIS_WERROR)
    target_compile_options(px_flags INTERFACE -Werror)
endif()
if(PXVIS_SANITIZE)
    target_compile_options(px_flags INTERFACE -fsanitize=${PXVIS_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    target_link_options(px_flags INTERFACE -fsanitize=${PXVIS_SANITIZE})
endif()

# Libraries under the GPL would bind everything that links ours; only apps may use them.
set(PXVIS_GPL_LIBRARIES aubio fftw3 fftw3f x264 x265 readline gsl rubberband)

function(_oq_target_name folder out)
    string(REPLACE "/" "_" name "px_${folder}")
    set(${out} "${name}" PARENT_SCOPE)
endfunction()

function(_oq_refuse_gpl folder)
    if(folder MATCHES "^apps/")
        return()
    endif()
    foreach(library IN LISTS ARGN)
        string(TOLOWER "${library}" lower)
        string(REGEX REPLACE "^.*::" "" lower "${lower}")
        if(lower IN_LIST PXVIS_GPL_LIBRARIES)
            message(FATAL_ERROR "src/${folder} links ${library}, which is under the GPL: only src/apps may")
        endif()
    endforeach()
endfunction()

# Nothing but the named symbols leaves the library, nor those of the static libraries in it; and it is
# never unmapped, since threads and exit handlers of others may still be in it.
function(_oq_close_borders target)
    list(JOIN ARGN ";\n        " globals)
    set(script "${CMAKE_BINARY_DIR}/exports/${target}.map")
    file(CONFIGURE OUTPUT "${script}" CONTENT "{\n    global:\n        ${globals};\n    local: *;\n};\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:--version-script=${script}" "LINKER:--exclude-libs,ALL"
        "LINKER:-z,nodelete")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
endfunction()

function(oq_library folder)
    cmake_parse_arguments(arg "MOC" "KIND;OUTPUT_NAME" "DEPENDS;LIBRARIES;EXPORTS" ${ARGN})
    if(NOT arg_KIND)
        set(arg_KIND STATIC)
    endif()
    _oq_refuse_gpl(${folder} ${arg_LIBRARIES})
    _oq_target_name(${folder} target)
    set(directory "${CMAKE_SOURCE_DIR}/src/${folder}")
    file(GLOB sources CONFIGURE_DEPENDS "${directory}/*.cpp")
    file(GLOB headers CONFIGURE_DEPENDS "${directory}/*.h")
    if(NOT sources AND NOT arg_KIND STREQUAL "STATIC")
        return()
    endif()
    if(NOT sources) # headers only
        add_library(${target} INTERFACE)
        target_link_libraries(${target} INTERFACE px_flags)
        set_property(GLOBAL APPEND PROPERTY PXVIS_LAYERS "${folder}:")
        return()
    endif()
    if(arg_KIND STREQUAL "EXECUTABLE")
        add_executable(${target} ${sources})
    else()
        add_library(${target} ${arg_KIND} ${sources})
        target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS "${CMAKE_SOURCE_DIR}/src" FILES ${headers})
        set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
    endif()
    set_target_properties(${target} PROPERTIES AUTOMOC ${arg_MOC})
    if(arg_OUTPUT_NAME)
        set_target_properties(${target} PROPERTIES OUTPUT_NAME "${arg_OUTPUT_NAME}" PREFIX "")
    endif()
    if(arg_EXPORTS)
        _oq_close_borders(${target} ${arg_EXPORTS})
    endif()
    target_link_libraries(${target} PUBLIC px_flags)
    foreach(dependency IN LISTS arg_DEPENDS)
        _oq_target_name(${dependency} name)
        target_link_libraries(${target} PUBLIC ${name})
    endforeach()
    target_link_libraries(${target} PUBLIC ${arg_LIBRARIES})
    string(REPLACE ";" " " depends "${arg_DEPENDS}")
    set_property(GLOBAL APPEND PROPERTY PXVIS_LAYERS "${folder}: ${depends}")
    set_property(GLOBAL APPEND PROPERTY PXVIS_LAYER_FILES ${sources} ${headers})
endfunction()

function(oq_test folder)
    cmake_parse_arguments(arg "" "" "DEPENDS;LABELS;LIBRARIES;MODULES;EXCLUDE;ENVIRONMENT" ${ARGN})
    string(REPLACE "/" "_" target "test_${folder}")
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp")
    foreach(excluded IN LISTS arg_EXCLUDE)
        list(REMOVE_ITEM sources "${CMAKE_SOURCE_DIR}/tests/${folder}/${excluded}")
    endforeach()
    if(NOT sources)
        return()
    endif()
    add_executable(${target} ${sources} "${CMAKE_SOURCE_DIR}/tests/TestMain.cpp")
    target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
    target_link_libraries(${target} PRIVATE px_flags doctest::doctest ${arg_LIBRARIES})
    target_compile_definitions(${target} PRIVATE
        PXVIS_SOURCE_DIR="${CMAKE_SOURCE_DIR}" PXVIS_BINARY_DIR="${CMAKE_BINARY_DIR}")
    foreach(dependency IN LISTS arg_DEPENDS)
        _oq_target_name(${dependency} name)
        target_link_libraries(${target} PRIVATE ${name})
    endforeach()
    foreach(module IN LISTS arg_MODULES)
        _oq_target_name(${module} name)
        add_dependencies(${target} ${name})
    endforeach()
    set(labels "")
    if(arg_LABELS)
        set(labels LABELS "${arg_LABELS}")
    endif()
    foreach(label IN LISTS arg_LABELS) # "tests_LABEL" builds all that have it
        if(NOT TARGET tests_${label})
            add_custom_target(tests_${label})
        endif()
        add_dependencies(tests_${label} ${target})
    endforeach()
    set(environment "")
    if(arg_ENVIRONMENT)
        set(environment ENVIRONMENT "${arg_ENVIRONMENT}")
    endif()
    doctest_discover_tests(${target} TEST_PREFIX "${folder}: "
        PROPERTIES TIMEOUT 300 ${labels} ${environment})
endfunction()

# Called once, last: the layer check runs in every build whose sources changed.
function(oq_finish)
    get_property(layers GLOBAL PROPERTY PXVIS_LAYERS)
    get_property(files GLOBAL PROPERTY PXVIS_LAYER_FILES)
    list(JOIN layers "\n" text)
    file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/layers.txt" CONTENT "${text}\n" @ONLY)
    add_custom_command(OUTPUT "${CMAKE_BINARY_DIR}/layers.stamp"
        COMMAND "${CMAKE_COMMAND}" -DSOURCE_DIR=${CMAKE_SOURCE_DIR}
            -DLAYERS=${CMAKE_BINARY_DIR}/layers.txt -P "${CMAKE_SOURCE_DIR}/cmake/CheckLayers.cmake"
        COMMAND "${CMAKE_COMMAND}" -DSOURCE_DIR=${CMAKE_SOURCE_DIR} -P "${CMAKE_SOURCE_DIR}/cmake/CheckOffline.cmake"
        COMMAND "${CMAKE_COMMAND}" -E touch "${CMAKE_BINARY_DIR}/layers.stamp"
        DEPENDS ${files} "${CMAKE_SOURCE_DIR}/cmake/CheckLayers.cmake" "${CMAKE_BINARY_DIR}/layers.txt"
            "${CMAKE_SOURCE_DIR}/cmake/CheckOffline.cmake"
        COMMENT "Checking that no folder includes upward and that the build fetches nothing" VERBATIM)
    add_custom_target(check_layers ALL DEPENDS "${CMAKE_BINARY_DIR}/layers.stamp")
endfunction()
