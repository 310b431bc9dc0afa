# A consumer of the components of the moved package, through find_package, and of connector-sources,
# connector-service and connector-etcd through pkg-config.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

build_project("${CMAKE_CURRENT_LIST_DIR}/components" "${WORK_DIR}/components"
    "-DCMAKE_PREFIX_PATH=${PREFIX}")
run(output "${WORK_DIR}/components/reads-yaml")
if(NOT output STREQUAL "8080\n")
    fail("the consumer of the component sources says: ${output}")
endif()
run(output "${WORK_DIR}/components/serves")
if(NOT output STREQUAL "http://127.0.0.1:\n")
    fail("the consumer of the component service says: ${output}")
endif()
run(output "${WORK_DIR}/components/names-etcd")
if(NOT output STREQUAL "The prefix is empty\n")
    fail("the consumer of the component etcd says: ${output}")
endif()
run(output "${WORK_DIR}/components/conforms")
if(NOT output MATCHES "PASSED")
    fail("the consumer of the component testing says: ${output}")
endif()

# A component that there is not
configure_command(configure "${CMAKE_CURRENT_LIST_DIR}/components" "${WORK_DIR}/no-component"
    "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DMORE_COMPONENTS=nonsense")
run_to_fail(output ${configure})
if(NOT output MATCHES "This installation has no component nonsense")
    fail("a component that there is not is not named: ${output}")
endif()

find_program(PKG_CONFIG NAMES pkg-config pkgconf REQUIRED)
set(ENV{PKG_CONFIG_PATH} "${PREFIX}/${LIBDIR}/pkgconfig")

# check_pkg_config(MODULE PROGRAM EXPECTED): builds a program with the flags of a module and runs it
function(check_pkg_config module program expected)
    run(compile_flags "${PKG_CONFIG}" --cflags ${module})
    run(link_flags "${PKG_CONFIG}" --libs ${module})
    run(library_directory "${PKG_CONFIG}" --variable=libdir ${module})
    string(STRIP "${library_directory}" library_directory)
    separate_arguments(compile_flags UNIX_COMMAND "${CXX_FLAGS} ${compile_flags}")
    separate_arguments(link_flags UNIX_COMMAND "${link_flags}")
    run(ignored "${CXX}" -std=c++17 ${compile_flags}
        "${CMAKE_CURRENT_LIST_DIR}/components/${program}.cpp" -o "${WORK_DIR}/${module}-program"
        ${link_flags} "-Wl,-rpath,${library_directory}")
    run(output "${WORK_DIR}/${module}-program")
    if(NOT output STREQUAL expected)
        fail("the consumer of ${module} through pkg-config says: ${output}")
    endif()
endfunction()

check_pkg_config(connector-sources reads-yaml "8080\n")
check_pkg_config(connector-service serves "http://127.0.0.1:\n")
check_pkg_config(connector-etcd names-etcd "The prefix is empty\n")
