# Runs PROGRAM. Fails unless it succeeds and its output is the content of the file EXPECTED.
execute_process(COMMAND "${PROGRAM}"
    RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
file(READ "${EXPECTED}" expected)
if(NOT status EQUAL 0 OR NOT output STREQUAL expected)
    message(NOTICE "status ${status}\n${errors}--- wrote:\n${output}--- should have written:\n${expected}")
    message(FATAL_ERROR "failed")
endif()
