# Builds a small house in which some includes go the wrong way, and sees that RoomsTest.cmake reports
# exactly those. DOCUMENT is docs/architecture.md.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${WORK_DIR}")

# add(FILE INCLUDE...)
function(add file)
    set(text "#pragma once\n")
    foreach(include IN LISTS ARGN)
        string(APPEND text "#include <${include}>\n")
    endforeach()
    file(WRITE "${WORK_DIR}/${file}" "${text}")
endfunction()

add(connector/configuration/OptionValue.hpp string boost/variant.hpp)
add(connector/configuration/Core.hpp connector/Export.hpp connector/async/Future.hpp Poco/Var.h)
add(connector/configuration/sources/Good.hpp connector/configuration/OptionValue.hpp)
add(connector/configuration/sources/Bad.hpp connector/configuration/Core.hpp)
add(connector/async/Future.hpp connector/reactive_streams/Publisher.hpp)
add(connector/async/Bad.hpp connector/configuration/Core.hpp connector/platform/Export.hpp)
add(connector/async/detail/Errors.hpp)
add(connector/elsewhere/Lost.hpp string)
add(messaging/connector/Message.hpp connector/async/Future.hpp connector/async/Bad.hpp)
add(platform/connector/reactive_streams/Publisher.hpp connector/Message.hpp)
add(platform/fl/Bad.hpp connector/async/Future.hpp connector/unknown.hpp)
add(tools/program/main.cpp sys/ioctl.h connector/configuration/detail/Secret.hpp)
add(connector/configuration/detail/Secret.hpp)

execute_process(
    COMMAND "${CMAKE_COMMAND}" "-DDOCUMENT=${DOCUMENT}" "-DSOURCE_DIR=${WORK_DIR}"
        -P "${CMAKE_CURRENT_LIST_DIR}/RoomsTest.cmake"
    RESULT_VARIABLE status ERROR_VARIABLE output)
string(REGEX MATCHALL "[a-z]+/[^\n]*: [^\n]+" reported "${output}")
list(FILTER reported EXCLUDE REGEX "CMake Error")
list(SORT reported)

set(expected
    "connector/async/Bad.hpp: <connector/configuration/Core.hpp> stands in connector/configuration"
    "connector/async/Bad.hpp: <connector/platform/Export.hpp> is nothing that this room may include"
    "connector/configuration/Core.hpp: <Poco/Var.h> is nothing that this room may include"
    "connector/configuration/sources/Bad.hpp: <connector/configuration/Core.hpp> stands in connector/configuration"
    "connector/elsewhere/Lost.hpp: stands in no room of the table"
    "messaging/connector/Message.hpp: <connector/async/Bad.hpp> stands in connector/async"
    "platform/connector/reactive_streams/Publisher.hpp: <connector/Message.hpp> stands in messaging"
    "platform/fl/Bad.hpp: <connector/async/Future.hpp> stands in connector/async"
    "platform/fl/Bad.hpp: <connector/unknown.hpp> is nothing that this room may include"
    "tools/program/main.cpp: <connector/configuration/detail/Secret.hpp> is private to the library")
if(status EQUAL 0 OR NOT reported STREQUAL expected)
    list(JOIN reported "\n" reported)
    list(JOIN expected "\n" expected)
    message(NOTICE "--- reported:\n${reported}\n--- should have reported:\n${expected}\n--- ${output}")
    message(FATAL_ERROR "failed")
endif()
