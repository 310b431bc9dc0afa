# Installs the build, moves the prefix, and checks the installed files.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

file(REMOVE_RECURSE "${WORK_DIR}/installed" "${WORK_DIR}/moved")
run(log "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/installed")
string(REGEX MATCHALL "-- (Installing|Up-to-date): [^\n]+" lines "${log}")
set(seen "")
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[^:]+: " "" path "${line}")
    if(NOT IS_DIRECTORY "${path}")
        if(path IN_LIST seen)
            fail("installed twice: ${path}")
        endif()
        list(APPEND seen "${path}")
    endif()
endforeach()
cmake_path(GET PREFIX PARENT_PATH prefix_parent)
file(MAKE_DIRECTORY "${prefix_parent}")
file(RENAME "${WORK_DIR}/installed" "${PREFIX}")

expect_exists(
    "${PREFIX}/${INCLUDEDIR}/connector/Export.hpp"
    "${PREFIX}/${INCLUDEDIR}/connector/configuration/Configuration.hpp"
    "${PREFIX}/${INCLUDEDIR}/connector/platform/Export.hpp"
    "${PREFIX}/${INCLUDEDIR}/connector/reactive_streams/Subscriber.hpp"
    "${PREFIX}/${INCLUDEDIR}/fl/i18n/codecvt.hpp"
    "${PREFIX}/${INCLUDEDIR}/foundation/log/basic_diagnostic_logger.hpp"
    "${PREFIX}/share/doc/connector-configuration/LICENSE")

# Private headers and parts of the tests are not installed.
file(GLOB_RECURSE installed RELATIVE "${PREFIX}" "${PREFIX}/*")
foreach(path IN LISTS installed)
    if(path MATCHES "\\.cpp$|PropertyParser|StreamCursor|gtest|gmock|test-support|benchmark")
        fail("should not be installed: ${path}")
    endif()
endforeach()

# The program finds the installed libraries wherever the prefix is.
if(EXISTS "${BUILD_DIR}/tools/connector-config/connector-config")
    run(version "${PREFIX}/bin/connector-config" --version)
    run_to_fail(unreached "${PREFIX}/bin/connector-config" --url unix:/nonexistent keys)
    if(NOT unreached MATCHES "/nonexistent")
        fail("the installed program does not find its network commands: ${unreached}")
    endif()
    if(NOT version MATCHES "${PROGRAM_VERSION}")
        fail("the installed program gives its version as ${version}")
    endif()
endif()

# No text file contains a directory of the build.
foreach(path IN LISTS installed)
    if(path MATCHES "\\.(hpp|cmake|pc)$")
        file(STRINGS "${PREFIX}/${path}" lines)
        foreach(directory IN ITEMS "${SOURCE_DIR}" "${BUILD_DIR}" "${WORK_DIR}")
            string(FIND "${lines}" "${directory}" position)
            if(NOT position EQUAL -1)
                fail("${path} mentions ${directory}")
            endif()
        endforeach()
    endif()
endforeach()
