# Compiles every installed header as if it were the first that a source includes, with warnings.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

build_project("${CMAKE_CURRENT_LIST_DIR}/headers" "${WORK_DIR}/headers"
    "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DHEADER_DIR=${PREFIX}/${INCLUDEDIR}")
