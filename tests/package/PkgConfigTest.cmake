# A consumer of the moved package, through pkg-config and a compiler, without CMake.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

build_with_pkg_config("${PREFIX}" "${WORK_DIR}/pkg-config-consumer")
expect_consumer_output("${WORK_DIR}/pkg-config-consumer")
