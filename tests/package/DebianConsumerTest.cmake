# A consumer of the installed Debian packages, through find_package, and through pkg-config and a
# compiler. The headers and libraries of Boost and POCO are those of this system.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

set(LIBDIR "${DEBIAN_LIBDIR}")
build_project("${CMAKE_CURRENT_LIST_DIR}/consumer" "${WORK_DIR}/debian-find-package"
    "-DCMAKE_PREFIX_PATH=${DEBIAN_PREFIX}")
expect_consumer_output("${WORK_DIR}/debian-find-package/consumer")
build_with_pkg_config("${DEBIAN_PREFIX}" "${WORK_DIR}/debian-pkg-config-consumer")
expect_consumer_output("${WORK_DIR}/debian-pkg-config-consumer")
