# What `cmake --install` installs: headers, libraries, the program, a CMake package and pkg-config
# files. No installed file contains the prefix, so the prefix can be moved afterwards. Each file
# belongs to a component, of which cpack makes a Debian package.

if(NOT CONNECTOR_INSTALL)
    return()
endif()

include(CMakePackageConfigHelpers)
include(PrivateHeaders)
list(JOIN connector_private_rooms "|" connector_uninstalled_regex)
list(JOIN connector_uninstalled_directories "|" connector_uninstalled_directories_regex)
string(APPEND connector_uninstalled_regex "|${connector_uninstalled_directories_regex}")

set(connector_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/connector-configuration")
set(connector_pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH pkgconfig_to_prefix "/${connector_pkgconfig_dir}" "/")
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix "${pkgconfig_to_prefix}")

# connector_install_headers(DIRECTORY DESTINATION): the headers below a directory, except private
# ones
function(connector_install_headers directory destination)
    install(DIRECTORY "${directory}/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${destination}"
        COMPONENT development
        FILES_MATCHING PATTERN "*.hpp"
        PATTERN detail EXCLUDE
        REGEX "/(${connector_uninstalled_regex})$" EXCLUDE ${ARGN})
endfunction()

# connector_install_files(DESTINATION FILE...): files for developers
function(connector_install_files destination)
    install(FILES ${ARGN} DESTINATION "${destination}" COMPONENT development)
endfunction()

# connector_install_library(TARGET EXPORT COMPONENT): the link without a version is for developers
function(connector_install_library target export component)
    install(TARGETS ${target} EXPORT ${export}-targets
        LIBRARY COMPONENT ${component} NAMELINK_COMPONENT development
        ARCHIVE COMPONENT development
        RUNTIME COMPONENT ${component})
endfunction()

# connector_install_export(NAME): the CMake targets of a component of the package
function(connector_install_export name)
    install(EXPORT ${name}-targets
        NAMESPACE connector::
        DESTINATION "${connector_package_dir}" COMPONENT development)
endfunction()

# connector_install_pkgconfig(NAME STATIC_DEFINITIONS STATIC_LIBS): NAME.pc; the rest is for static
# libraries only
function(connector_install_pkgconfig name static_definitions static_libs)
    if(BUILD_SHARED_LIBS)
        set(static_definitions "")
        set(static_libs "")
    endif()
    configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in"
        "${PROJECT_BINARY_DIR}/cmake/${name}.pc" @ONLY)
    connector_install_files("${connector_pkgconfig_dir}" "${PROJECT_BINARY_DIR}/cmake/${name}.pc")
endfunction()

# connector_install_component(NAME STATIC_DEFINITIONS STATIC_LIBS): connector-NAME as the component
# NAME of the package
function(connector_install_component name static_definitions static_libs)
    connector_install_headers("${PROJECT_SOURCE_DIR}/connector/${name}" "connector/${name}")
    connector_install_library(connector-${name} connector-${name} ${name})
    connector_install_export(connector-${name})
    set(export_header "${PROJECT_BINARY_DIR}/connector/${name}/include/connector/${name}/Export.hpp")
    if(NOT name STREQUAL "testing") # headers only
        connector_install_files("${CMAKE_INSTALL_INCLUDEDIR}/connector/${name}" "${export_header}")
        connector_install_pkgconfig(
            connector-${name} "${static_definitions}" "${static_libs}")
    endif()
endfunction()

# The library
connector_install_headers("${PROJECT_SOURCE_DIR}/connector" connector
    REGEX "/connector/(etcd|service|sources|testing)$" EXCLUDE)
foreach(header IN LISTS connector_installed_private_headers)
    cmake_path(GET header PARENT_PATH parent)
    connector_install_files("${CMAKE_INSTALL_INCLUDEDIR}/${parent}"
        "${PROJECT_SOURCE_DIR}/${header}")
endforeach()
connector_install_files("${CMAKE_INSTALL_INCLUDEDIR}/connector"
    "${PROJECT_BINARY_DIR}/connector/include/connector/Export.hpp")
connector_install_library(connector-configuration connector-configuration configuration)

# The platform. If the application has its own, connector-platform is only an interface to that, and
# has no files.
if(TARGET connector-platform)
    connector_install_library(connector-platform connector-configuration configuration)
endif()
if(NOT CONNECTOR_PLATFORM)
    connector_install_headers("${PROJECT_SOURCE_DIR}/platform" "")
    connector_install_headers("${PROJECT_SOURCE_DIR}/messaging" "")
    connector_install_files("${CMAKE_INSTALL_INCLUDEDIR}/connector/platform"
        "${PROJECT_BINARY_DIR}/platform/include/connector/platform/Export.hpp")
endif()

# The components of the package
if(TARGET connector-sources)
    connector_install_component(sources
        "-DCONNECTOR_SOURCES_STATIC_DEFINE" "-lyaml-cpp -ltomlplusplus")
endif()
if(TARGET connector-service)
    connector_install_component(service "-DCONNECTOR_SERVICE_STATIC_DEFINE" "-lssl -lcrypto")
endif()
if(TARGET connector-etcd)
    connector_install_component(etcd
        "-DCONNECTOR_ETCD_STATIC_DEFINE" ", grpc++, protobuf-lite")
endif()
if(TARGET connector-testing)
    connector_install_component(testing "" "")
endif()

# find_package(connector-configuration)
connector_install_export(connector-configuration)
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/cmake/connector-configuration-config-version.cmake"
    COMPATIBILITY SameMajorVersion) # see docs/abi-policy.md
configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/connector-configuration-config.cmake.in"
    "${PROJECT_BINARY_DIR}/cmake/connector-configuration-config.cmake"
    INSTALL_DESTINATION "${connector_package_dir}"
    NO_SET_AND_CHECK_MACRO)
connector_install_files("${connector_package_dir}"
    "${PROJECT_BINARY_DIR}/cmake/connector-configuration-config.cmake"
    "${PROJECT_BINARY_DIR}/cmake/connector-configuration-config-version.cmake")

# pkg-config. Applications use Boost and POCO, too, so these are in Libs. If the application has its
# own platform, it must add the flags of that.
set(connector_platform_libs "-lconnector-platform -lboost_log -lboost_thread")
if(CONNECTOR_PLATFORM)
    set(connector_platform_libs "")
endif()
connector_install_pkgconfig(connector-configuration
    " -DCONNECTOR_STATIC_DEFINE -DCONNECTOR_PLATFORM_STATIC_DEFINE" "")

# The program finds the installed libraries, and has its manual page and its completions.
if(TARGET connector-config)
    file(RELATIVE_PATH bin_to_lib "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(connector-config PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
    install(TARGETS connector-config RUNTIME COMPONENT program)
    set(network_directory "${CMAKE_INSTALL_LIBEXECDIR}/connector-config")
    file(RELATIVE_PATH network_to_lib "/${network_directory}" "/${CMAKE_INSTALL_LIBDIR}")
    set(connector_network_programs connector-config-network)
    if(TARGET connector-config-etcd)
        list(APPEND connector_network_programs connector-config-etcd)
    endif()
    set_target_properties(${connector_network_programs} PROPERTIES
        INSTALL_RPATH "$ORIGIN/${network_to_lib}")
    install(TARGETS ${connector_network_programs}
        RUNTIME DESTINATION "${network_directory}" COMPONENT program)
    # connector_install_document(FILE DIRECTORY)
    function(connector_install_document file directory)
        install(FILES "${PROJECT_BINARY_DIR}/tools/connector-config/documents/${file}"
            DESTINATION "${directory}" COMPONENT program)
    endfunction()
    connector_install_document(connector-config.1 "${CMAKE_INSTALL_MANDIR}/man1")
    connector_install_document(connector-config
        "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
    connector_install_document(_connector-config "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
    connector_install_document(connector-config.fish
        "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
endif()

# In no component, since Debian packages have it in their own form
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

if(PROJECT_IS_TOP_LEVEL AND BUILD_SHARED_LIBS AND NOT CONNECTOR_PLATFORM
        AND TARGET connector-config AND TARGET connector-etcd)
    include(DebianPackages)
endif()
