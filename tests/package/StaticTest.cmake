# Static libraries are built, installed, and used through find_package and pkg-config.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

set(work "${WORK_DIR}/static")
set(build "${work}/build")
set(prefix "${work}/prefix")
file(REMOVE_RECURSE "${prefix}")
build_library("${SOURCE_DIR}" "${build}" -DBUILD_SHARED_LIBS=OFF
    -DCONNECTOR_BUILD_TESTS=OFF -DCONNECTOR_BUILD_TOOLS=OFF -DCONNECTOR_BUILD_EXAMPLES=OFF
    -DCONNECTOR_BUILD_BENCHMARKS=OFF)
run(ignored "${CMAKE_COMMAND}" --install "${build}" --prefix "${prefix}")
expect_exists("${prefix}/${LIBDIR}/libconnector-configuration.a"
    "${prefix}/${LIBDIR}/libconnector-platform.a")
file(GLOB shared "${prefix}/${LIBDIR}/*.so*")
if(shared)
    fail("shared libraries were built: ${shared}")
endif()

# The consumer's expected output has diagnostic lines, so the loggers of the libraries are linked.
build_project("${CMAKE_CURRENT_LIST_DIR}/consumer" "${work}/find-package"
    "-DCMAKE_PREFIX_PATH=${prefix}" -DSHARED_PART=ON)
expect_consumer_output("${work}/find-package/consumer")
expect_consumer_output("${work}/find-package/consumer-of-shared-part")

build_with_pkg_config("${prefix}" "${work}/pkg-config-consumer")
expect_consumer_output("${work}/pkg-config-consumer")
