# How the project's targets are compiled. None of this affects applications.

option(CONNECTOR_WARNINGS_AS_ERRORS "Treat warnings in our own code as errors" OFF)
option(CONNECTOR_DEBUG_SYMBOLS "Compile the libraries and the program with debug symbols" OFF)
set(CONNECTOR_SANITIZE "" CACHE STRING "Sanitizers to build with, for example address,undefined")

if(PROJECT_IS_TOP_LEVEL)
    if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
        set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
    endif()
    find_program(CCACHE_PROGRAM ccache)
    mark_as_advanced(CCACHE_PROGRAM)
    if(CCACHE_PROGRAM AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
        set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
    endif()
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
endif()

# A sanitizer must instrument everything that is linked together, so these are no target options.
if(CONNECTOR_SANITIZE)
    add_compile_options(-fsanitize=${CONNECTOR_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${CONNECTOR_SANITIZE})
    # GCC warns that the sanitizer does not see the fences of Boost.Asio, which also takes mutexes.
    if(CONNECTOR_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-Wno-tsan)
    endif()
endif()

# connector_own_target(TARGET): the settings of all targets of the project
function(connector_own_target target)
    target_compile_features(${target} PUBLIC cxx_std_17)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
    if(CONNECTOR_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# connector_with_debug_symbols(TARGET...): for targets that packages contain. Types are among the
# symbols, because a test compares those of the libraries with the last release.
function(connector_with_debug_symbols)
    if(CONNECTOR_DEBUG_SYMBOLS)
        foreach(target IN LISTS ARGN)
            target_compile_options(${target} PRIVATE
                -g "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=./")
        endforeach()
    endif()
endfunction()

# The libraries' so-names end with this: the versions that are compatible (docs/abi-policy.md).
set(connector_soversion "${PROJECT_VERSION_MAJOR}")

# connector_own_library(TARGET NAME EXPORT_MACRO...): the settings of all libraries of the project.
# Applications link it as connector::NAME. The EXPORT_MACROs of its headers are empty if the library
# is static, in the library and in applications.
function(connector_own_library target name)
    connector_own_target(${target})
    connector_with_debug_symbols(${target})
    add_library(connector::${name} ALIAS ${target})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${name}
        POSITION_INDEPENDENT_CODE ON # a static library may be linked into a shared one
        VERSION ${PROJECT_VERSION}
        SOVERSION ${connector_soversion}
        INSTALL_RPATH "$ORIGIN")
    if(BUILD_SHARED_LIBS)
        set(map "${PROJECT_SOURCE_DIR}/cmake/exported-symbols.map")
        target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
        set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${map}")
    else()
        list(TRANSFORM ARGN REPLACE "_EXPORT$" "_STATIC_DEFINE" OUTPUT_VARIABLE definitions)
        target_compile_definitions(${target} PUBLIC ${definitions})
    endif()
endfunction()
