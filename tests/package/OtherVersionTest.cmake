# Only versions with the same major number are compatible.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

foreach(version IN ITEMS 0.9 2.0)
    configure_command(configure "${CMAKE_CURRENT_LIST_DIR}/consumer"
        "${WORK_DIR}/other-version-${version}"
        "-DCMAKE_PREFIX_PATH=${PREFIX}" -DWANTED_VERSION=${version})
    run_to_fail(output ${configure})
    if(NOT output MATCHES "requested version \"${version}\"")
        fail("the consumer of version ${version} failed for another reason:\n${output}")
    endif()
endforeach()
