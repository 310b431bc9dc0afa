# The dynamic symbols of the libraries belong to our own namespaces, or are templates of the standard
# library, Boost and POCO that were instantiated here. Anything else could collide with a symbol of
# the application.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

# A mangled name: what it is about (a vtable, type information, a guard, a thunk), and then the
# outermost namespace. S followed by a small letter is a name of the standard library for short.
set(about "(T[VTIS]|GV|GR|Th[n0-9_]*|Tv[n0-9_]*)?")
set(namespace "(9connector|2fl|10foundation|St|S[abdios]|9__gnu_cxx|5boost|4Poco)")
set(ours "^_Z${about}(N[KVRO]*|Z+NK?|[A-Z]?)?${namespace}")
# Free functions stand outside of nested names: operators, and what a sanitizer adds.
set(instrumentation "^(_*asan_|__odr_asan|_*tsan_|_*ubsan_|___asan)")

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
        if(NOT symbol MATCHES "${ours}" AND NOT symbol MATCHES "${instrumentation}")
            string(APPEND foreign "\n  ${symbol}")
        endif()
    endforeach()
    if(foreign)
        fail("${library} exports what belongs to nobody:${foreign}")
    endif()
endforeach()
