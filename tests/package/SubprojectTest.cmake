# The library inside another build: it adds its two targets and nothing else.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

set(build "${WORK_DIR}/subproject")
build_library("${CMAKE_CURRENT_LIST_DIR}/subproject" "${build}" "-DLIBRARY_DIR=${SOURCE_DIR}")
run(ignored "${build}/application")

run(tests "${CMAKE_CTEST_COMMAND}" --test-dir "${build}" --show-only)
if(NOT tests MATCHES "Total Tests: 0")
    fail("the subproject adds tests:\n${tests}")
endif()

file(REMOVE_RECURSE "${build}/prefix")
run(ignored "${CMAKE_COMMAND}" --install "${build}" --prefix "${build}/prefix")
expect_missing("${build}/prefix")
