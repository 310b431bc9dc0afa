# With CONNECTOR_INSTALL=OFF nothing is installed. The build directory is only configured: a rule that is
# left over would fail, because what it installs is not built.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

set(build "${WORK_DIR}/no-install")
configure_command(configure "${SOURCE_DIR}" "${build}" -DCONNECTOR_INSTALL=OFF
    -DCONNECTOR_BUILD_TESTS=OFF -DCONNECTOR_BUILD_BENCHMARKS=OFF)
run(ignored ${configure})
run(ignored "${CMAKE_COMMAND}" --install "${build}" --prefix "${build}/prefix")
expect_missing("${build}/prefix")
