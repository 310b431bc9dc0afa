# A consumer of the moved package, through find_package.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

build_project("${CMAKE_CURRENT_LIST_DIR}/consumer" "${WORK_DIR}/find-package"
    "-DCMAKE_PREFIX_PATH=${PREFIX}")
expect_consumer_output("${WORK_DIR}/find-package/consumer")
