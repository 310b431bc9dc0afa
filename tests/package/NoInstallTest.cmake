# With CONNECTOR_INSTALL=OFF nothing is installed. The project is only configured: any installation
# of a target would fail, because no target is built.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

set(build "${WORK_DIR}/no-install")
configure_command(configure "${SOURCE_DIR}" "${build}" -DCONNECTOR_INSTALL=OFF
    -DCONNECTOR_BUILD_TESTS=OFF -DCONNECTOR_BUILD_BENCHMARKS=OFF)
run(ignored ${configure})
run(ignored "${CMAKE_COMMAND}" --install "${build}" --prefix "${build}/prefix")
expect_missing("${build}/prefix")
