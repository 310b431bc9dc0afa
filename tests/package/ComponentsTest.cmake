# A consumer of the components of the moved package, through find_package, and of connector-sources
# through pkg-config.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

build_project("${CMAKE_CURRENT_LIST_DIR}/components" "${WORK_DIR}/components"
    "-DCMAKE_PREFIX_PATH=${PREFIX}")
run(output "${WORK_DIR}/components/reads-yaml")
if(NOT output STREQUAL "8080\n")
    fail("the consumer of the component sources says: ${output}")
endif()
run(output "${WORK_DIR}/components/conforms")
if(NOT output MATCHES "PASSED")
    fail("the consumer of the component testing says: ${output}")
endif()

# A component that there is not
configure_command(configure "${CMAKE_CURRENT_LIST_DIR}/components" "${WORK_DIR}/no-component"
    "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DMORE_COMPONENTS=nonsense")
run_to_fail(output ${configure})

find_program(PKG_CONFIG NAMES pkg-config pkgconf REQUIRED)
set(ENV{PKG_CONFIG_PATH} "${PREFIX}/${LIBDIR}/pkgconfig")
run(compile_flags "${PKG_CONFIG}" --cflags connector-sources)
run(link_flags "${PKG_CONFIG}" --libs connector-sources)
run(library_directory "${PKG_CONFIG}" --variable=libdir connector-sources)
string(STRIP "${library_directory}" library_directory)
separate_arguments(compile_flags UNIX_COMMAND "${CXX_FLAGS} ${compile_flags}")
separate_arguments(link_flags UNIX_COMMAND "${link_flags}")
set(program "${WORK_DIR}/pkg-config-sources")
run(ignored "${CXX}" -std=c++17 ${compile_flags}
    "${CMAKE_CURRENT_LIST_DIR}/components/reads-yaml.cpp" -o "${program}"
    ${link_flags} "-Wl,-rpath,${library_directory}")
run(output "${program}")
if(NOT output STREQUAL "8080\n")
    fail("the consumer through pkg-config says: ${output}")
endif()
