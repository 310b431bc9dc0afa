# The common steps of the tests in this directory. Their scripts include this file; CMakeLists.txt
# lists the definitions that they are run with.
cmake_minimum_required(VERSION 3.22)

# fail(TEXT): ends the test
function(fail text)
    message(NOTICE "${text}") # as it is; CMake would wrap an error message
    message(FATAL_ERROR "failed")
endfunction()

# run(OUTPUT COMMAND...): the command must succeed; OUTPUT is set to its standard output
function(run output)
    execute_process(COMMAND ${ARGN}
        RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT status EQUAL 0)
        list(JOIN ARGN " " command)
        fail("${command}\nended with ${status}:\n${out}\n${err}")
    endif()
    set(${output} "${out}" PARENT_SCOPE)
endfunction()

# run_to_fail(OUTPUT COMMAND...): the command must fail; OUTPUT is set to its messages
function(run_to_fail output)
    execute_process(COMMAND ${ARGN}
        RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(status EQUAL 0)
        list(JOIN ARGN " " command)
        fail("${command}\nsucceeded:\n${out}\n${err}")
    endif()
    set(${output} "${out}${err}" PARENT_SCOPE)
endfunction()

# configure_command(OUTPUT SOURCE BUILD ARGUMENT...): the command that configures a project in a new
# build directory, with the settings of the tested build
function(configure_command output source build)
    file(REMOVE_RECURSE "${build}")
    set(${output} "${CMAKE_COMMAND}" -S "${source}" -B "${build}" -G "${GENERATOR}"
        "-DCMAKE_CXX_COMPILER=${CXX}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
        "-DCMAKE_CXX_COMPILER_LAUNCHER=${CXX_LAUNCHER}" "-DCMAKE_BUILD_TYPE=${BUILD_TYPE}" ${ARGN}
        PARENT_SCOPE)
endfunction()

# build_project(SOURCE BUILD ARGUMENT...): configures and builds
function(build_project source build)
    configure_command(configure "${source}" "${build}" ${ARGN})
    run(ignored ${configure})
    run(ignored "${CMAKE_COMMAND}" --build "${build}")
endfunction()

# build_library(SOURCE BUILD ARGUMENT...): configures and builds a project that contains the
# library, without optimisation, which saves a quarter of the time: these builds test what is
# installed and linked.
function(build_library source build)
    build_project("${source}" "${build}" ${ARGN}
        -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0)
endfunction()

# build_with_pkg_config(PREFIX PROGRAM): builds the consumer with the flags from pkg-config
function(build_with_pkg_config prefix program)
    set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
    run(compile_flags "${PKG_CONFIG}" --cflags connector-configuration)
    run(link_flags "${PKG_CONFIG}" --libs connector-configuration)
    run(library_directory "${PKG_CONFIG}" --variable=libdir connector-configuration)
    string(STRIP "${library_directory}" library_directory)
    separate_arguments(compile_flags UNIX_COMMAND "${CXX_FLAGS} ${compile_flags}")
    separate_arguments(link_flags UNIX_COMMAND "${CXX_FLAGS} ${link_flags}")

    run(ignored ${CXX_LAUNCHER} "${CXX}" -std=c++17 ${compile_flags}
        -c "${CMAKE_CURRENT_LIST_DIR}/consumer/consumer.cpp" -o "${program}.o")
    run(ignored "${CXX}" "${program}.o" -o "${program}"
        ${link_flags} "-Wl,-rpath,${library_directory}")
endfunction()

# expect_consumer_output(PROGRAM): the consumer runs and writes what it should
function(expect_consumer_output program)
    run(output "${program}")
    string(CONCAT expected
        "set: net.port, default\n"
        "set: net.port@default\n"
        "updatePublishers: net.port\n"
        "get: net.port from site\n"
        "get option: net.port from site\n"
        "net.port = {\"type\":\"int\",\"value\":8080} from site\n")
    if(NOT output STREQUAL expected)
        fail("${program} wrote\n${output}instead of\n${expected}")
    endif()
endfunction()

# expect_exists(PATH...) and expect_missing(PATH...)
function(expect_exists)
    foreach(path IN LISTS ARGN)
        if(NOT EXISTS "${path}")
            fail("missing: ${path}")
        endif()
    endforeach()
endfunction()

function(expect_missing)
    foreach(path IN LISTS ARGN)
        if(EXISTS "${path}")
            fail("should not be there: ${path}")
        endif()
    endforeach()
endfunction()
