# A consumer of the moved package, through pkg-config and a compiler, without CMake.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

set(ENV{PKG_CONFIG_PATH} "${PREFIX}/${LIBDIR}/pkgconfig")
run(compile_flags "${PKG_CONFIG}" --cflags connector-configuration)
run(link_flags "${PKG_CONFIG}" --libs connector-configuration)
run(library_directory "${PKG_CONFIG}" --variable=libdir connector-configuration)
string(STRIP "${library_directory}" library_directory)
separate_arguments(compile_flags UNIX_COMMAND "${CXX_FLAGS} ${compile_flags}")
separate_arguments(link_flags UNIX_COMMAND "${link_flags}")

set(program "${WORK_DIR}/pkg-config-consumer")
run(ignored "${CXX}" -std=c++17 ${compile_flags}
    "${CMAKE_CURRENT_LIST_DIR}/consumer/consumer.cpp" -o "${program}"
    ${link_flags} "-Wl,-rpath,${library_directory}")
expect_consumer_output("${program}")
