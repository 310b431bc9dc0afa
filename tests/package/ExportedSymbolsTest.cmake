# The dynamic symbols of the libraries are in the project's namespaces. Any other symbol could
# collide with one of the application.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

# A mangled name: its kind (a table of a class, a guard, a thunk), then the outermost namespace
set(about "(T[CISTV]|GV|GR|Th[n0-9_]*|Tv[n0-9_]*)?")
set(ours "^_Z${about}Z*N[KVRO]*(9connector|2fl|10foundation)")

string(REPLACE "|" ";" libraries "${LIBRARIES}")
foreach(library IN LISTS libraries)
    run(symbols "${NM}" --dynamic --defined-only --format=posix "${library}")
    string(REGEX MATCHALL "[^\n]+" lines "${symbols}")
    list(LENGTH lines count)
    if(count LESS 20)
        fail("${library} exports only ${count} symbols")
    endif()
    set(foreign "")
    foreach(line IN LISTS lines)
        string(REGEX MATCH "^[^ ]+" symbol "${line}")
        if(NOT symbol MATCHES "${ours}")
            string(APPEND foreign "\n  ${symbol}")
        endif()
    endforeach()
    if(foreign)
        fail("${library} exports symbols of other namespaces:${foreign}")
    endif()
endforeach()
