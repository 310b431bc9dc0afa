# Before 1.0, minor versions are incompatible: the package is found only for its own minor version.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

configure_command(configure "${CMAKE_CURRENT_LIST_DIR}/consumer" "${WORK_DIR}/other-version"
    "-DCMAKE_PREFIX_PATH=${PREFIX}" -DWANTED_VERSION=0.0)
run_to_fail(output ${configure})
if(NOT output MATCHES "requested version \"0\\.0\"")
    fail("the consumer of another version failed for another reason:\n${output}")
endif()
