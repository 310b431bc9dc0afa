# Compiles SOURCE with MACRO and expects one error, which contains TEXT.
list(TRANSFORM INCLUDES PREPEND "-I")
execute_process(COMMAND "${COMPILER}" -std=c++17 -fsyntax-only "-D${MACRO}" ${INCLUDES} "${SOURCE}"
    ERROR_VARIABLE errors RESULT_VARIABLE status)
string(REGEX MATCHALL "error: [^\n]*" found "${errors}")
list(LENGTH found count)
if(status EQUAL 0 OR NOT count EQUAL 1 OR NOT found MATCHES "${TEXT}")
    message(FATAL_ERROR "Not one error with \"${TEXT}\":\n${errors}")
endif()
