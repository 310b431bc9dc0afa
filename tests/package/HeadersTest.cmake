# Compiles every installed header on its own, with warnings.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

build_project("${CMAKE_CURRENT_LIST_DIR}/headers" "${WORK_DIR}/headers"
    "-DCMAKE_PREFIX_PATH=${PREFIX}" "-DHEADER_DIR=${PREFIX}/${INCLUDEDIR}")
