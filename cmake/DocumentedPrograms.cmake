# The programs in documents are built and run, so that they stay correct.

find_program(AWK_PROGRAM NAMES awk mawk gawk REQUIRED)
mark_as_advanced(AWK_PROGRAM)

set(documented_programs_dir "${CMAKE_CURRENT_LIST_DIR}")

# connector_add_documented_programs(DOCUMENT): builds each complete program of a Markdown file (see
# documented-programs.awk) against the library and adds a test that runs it, in the root of the
# checkout, and compares what it writes. Sets documented_programs to their names.
function(connector_add_documented_programs document)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${document}")
    cmake_path(GET document STEM stem)
    set(extracted "${CMAKE_CURRENT_BINARY_DIR}/extracted")
    file(MAKE_DIRECTORY "${extracted}")
    execute_process(
        COMMAND "${AWK_PROGRAM}" -v "directory=${extracted}" -v "stem=${stem}"
            -f "${documented_programs_dir}/documented-programs.awk" "${document}"
        OUTPUT_VARIABLE names
        COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[^\n]+" names "${names}")
    foreach(name IN LISTS names)
        connector_add_documented_program("${name}" "${extracted}")
    endforeach()
    set(documented_programs "${names}" PARENT_SCOPE)
endfunction()

function(connector_add_documented_program name extracted)
    foreach(suffix IN ITEMS cpp expected) # copied only if they differ, to avoid rebuilding
        configure_file("${extracted}/${name}.${suffix}" "${name}.${suffix}" COPYONLY)
    endforeach()
    set(target "documented-${name}")
    add_executable(${target} "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
    connector_own_target(${target})
    target_link_libraries(${target} PRIVATE connector::configuration
        $<TARGET_NAME_IF_EXISTS:connector::sources> $<TARGET_NAME_IF_EXISTS:connector::service>
        $<TARGET_NAME_IF_EXISTS:connector::testing>)
    connector_link_other_libraries(${target} "${extracted}/${name}.cpp")
    add_test(NAME docs.${name}
        COMMAND "${CMAKE_COMMAND}" "-DPROGRAM=$<TARGET_FILE:${target}>"
            "-DEXPECTED=${CMAKE_CURRENT_BINARY_DIR}/${name}.expected"
            -P "${documented_programs_dir}/CompareOutput.cmake"
        WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}")
    set_tests_properties(docs.${name} PROPERTIES TIMEOUT 60)
endfunction()

# connector_link_other_libraries(TARGET SOURCE): what a program needs that shows how another library
# does the same
function(connector_link_other_libraries target source)
    file(STRINGS "${source}" includes REGEX "^#include <(gflags|Poco/Util)/")
    if(includes MATCHES "gflags/")
        find_package(gflags REQUIRED)
        target_link_libraries(${target} PRIVATE gflags)
    endif()
    if(includes MATCHES "Poco/Util/")
        find_package(Poco REQUIRED COMPONENTS Util)
        target_link_libraries(${target} PRIVATE Poco::Util)
    endif()
endfunction()
