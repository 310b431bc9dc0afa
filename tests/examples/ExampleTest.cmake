# Runs the example program EXAMPLE and compares its output.
execute_process(COMMAND "${EXAMPLE}"
    OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
set(expected "net.port = 8080, from site
net.host is not set
Service exists but is not running.
")
if(NOT status EQUAL 0 OR NOT output STREQUAL expected OR NOT errors STREQUAL "")
    message(FATAL_ERROR "status ${status}, wrote:\n${output}${errors}expected:\n${expected}")
endif()
