# The steps that the tests of the package have in common. Included by their scripts, which CMake runs
# with the definitions that CMakeLists.txt lists.
cmake_minimum_required(VERSION 3.22)

# fail(TEXT): ends the test
function(fail text)
    message(NOTICE "${text}") # as it stands; an error would be wrapped like prose
    message(FATAL_ERROR "failed")
endfunction()

# run(OUTPUT COMMAND...): the command must succeed; its standard output goes into OUTPUT
function(run output)
    execute_process(COMMAND ${ARGN}
        RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT status EQUAL 0)
        list(JOIN ARGN " " command)
        fail("${command}\nended with ${status}:\n${out}\n${err}")
    endif()
    set(${output} "${out}" PARENT_SCOPE)
endfunction()

# run_to_fail(OUTPUT COMMAND...): the command must fail; what it says goes into OUTPUT
function(run_to_fail output)
    execute_process(COMMAND ${ARGN}
        RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(status EQUAL 0)
        list(JOIN ARGN " " command)
        fail("${command}\nsucceeded:\n${out}\n${err}")
    endif()
    set(${output} "${out}${err}" PARENT_SCOPE)
endfunction()

# configure_command(OUTPUT SOURCE BUILD ARGUMENT...): the command that configures a project, in a new
# build directory, the way the tested build is
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

# build_with_pkg_config(PREFIX PROGRAM): builds the consumer with what pkg-config says of the package
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

# expect_consumer_output(PROGRAM): the consumer runs and says what its source promises
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
