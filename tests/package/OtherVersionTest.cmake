# Before 1.0 a program is built for one minor version: the package offers itself for no other.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

configure_command(configure "${CMAKE_CURRENT_LIST_DIR}/consumer" "${WORK_DIR}/other-version"
    "-DCMAKE_PREFIX_PATH=${PREFIX}" -DWANTED_VERSION=0.0)
run_to_fail(output ${configure})
if(NOT output MATCHES "requested version \"0\\.0\"")
    fail("the consumer of another version failed for another reason:\n${output}")
endif()
