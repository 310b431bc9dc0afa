# The dynamic symbols of the libraries are in the project's namespaces, or instantiated templates of
# the standard library, Boost and POCO. Any other symbol could collide with one of the application.
include("${CMAKE_CURRENT_LIST_DIR}/Steps.cmake")

# A mangled name: its kind (a vtable, type information, a guard, a thunk), then the outermost
# namespace. S and a lower-case letter abbreviate a name of the standard library.
set(about "(T[VTIS]|GV|GR|Th[n0-9_]*|Tv[n0-9_]*)?")
set(namespace "(9connector|2fl|10foundation|St|S[abdios]|9__gnu_cxx|5boost|4Poco)")
set(ours "^_Z${about}(N[KVRO]*|Z+NK?|[A-Z]?)?${namespace}")
# Symbols that a sanitizer adds
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
        fail("${library} exports symbols of other namespaces:${foreign}")
    endif()
endforeach()
