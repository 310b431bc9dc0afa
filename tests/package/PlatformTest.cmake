# Builds, installs and uses the library with the application's own platform.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

set(work "${WORK_DIR}/own-platform")
file(REMOVE_RECURSE "${work}")

# The application's platform: the installed files of the bundled one, with another file name.
set(platform "${work}/application")
file(COPY "${PREFIX}/${INCLUDEDIR}/fl" "${PREFIX}/${INCLUDEDIR}/foundation"
    DESTINATION "${platform}/include")
file(GLOB_RECURSE streams RELATIVE "${SOURCE_DIR}/platform" "${SOURCE_DIR}/platform/connector/*.hpp")
file(GLOB_RECURSE messages RELATIVE "${SOURCE_DIR}/messaging" "${SOURCE_DIR}/messaging/*.hpp")
foreach(header IN LISTS streams messages ITEMS connector/platform/Export.hpp)
    configure_file("${PREFIX}/${INCLUDEDIR}/${header}" "${platform}/include/${header}" COPYONLY)
endforeach()
file(REAL_PATH "${PREFIX}/${LIBDIR}/libconnector-platform.so" library)
cmake_path(GET library FILENAME library_name)
file(COPY "${library}" DESTINATION "${platform}/lib")
file(CREATE_LINK "${library_name}" "${platform}/lib/libapplication-platform.so" SYMBOLIC)
file(GLOB sonames RELATIVE "${PREFIX}/${LIBDIR}" "${PREFIX}/${LIBDIR}/libconnector-platform.so.*")
list(REMOVE_ITEM sonames "${library_name}")
foreach(soname IN LISTS sonames)
    file(CREATE_LINK "${library_name}" "${platform}/lib/${soname}" SYMBOLIC)
endforeach()

set(platform_file "${CMAKE_CURRENT_LIST_DIR}/application-platform.cmake")
build_library("${SOURCE_DIR}" "${work}/build"
    "-DCONNECTOR_PLATFORM=application::platform" "-DPLATFORM_PREFIX=${platform}"
    "-DCMAKE_PROJECT_INCLUDE=${platform_file}"
    -DCONNECTOR_BUILD_TESTS=OFF -DCONNECTOR_BUILD_TOOLS=OFF -DCONNECTOR_BUILD_EXAMPLES=OFF
    -DCONNECTOR_BUILD_BENCHMARKS=OFF -DCONNECTOR_BUILD_SOURCES=OFF
    -DCONNECTOR_BUILD_TESTING_KIT=OFF)
run(ignored "${CMAKE_COMMAND}" --install "${work}/build" --prefix "${work}/prefix")

# The bundled platform is neither built nor installed.
file(GLOB_RECURSE built "${work}/build/*connector-platform*.so*" "${work}/build/*/codecvt.cpp.o")
if(built)
    fail("the bundled platform was built: ${built}")
endif()
expect_exists("${work}/prefix/${LIBDIR}/libconnector-configuration.so")
expect_missing(
    "${work}/prefix/${LIBDIR}/libconnector-platform.so"
    "${work}/prefix/${INCLUDEDIR}/fl"
    "${work}/prefix/${INCLUDEDIR}/foundation"
    "${work}/prefix/${INCLUDEDIR}/connector/platform"
    "${work}/prefix/${INCLUDEDIR}/connector/reactive_streams")

# A consumer without that platform gets an error message that names it.
set(consumer "${CMAKE_CURRENT_LIST_DIR}/consumer")
configure_command(configure "${consumer}" "${work}/without" "-DCMAKE_PREFIX_PATH=${work}/prefix")
run_to_fail(output ${configure})
string(REGEX REPLACE "[ \n]+" " " output "${output}")
if(NOT output MATCHES "the target application::platform must be there first")
    fail("the missing platform is not named:\n${output}")
endif()

build_project("${consumer}" "${work}/with" "-DCMAKE_PREFIX_PATH=${work}/prefix"
    "-DPLATFORM_FILE=${platform_file}" "-DPLATFORM_PREFIX=${platform}")
expect_consumer_output("${work}/with/consumer")
