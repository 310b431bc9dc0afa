# What `cmake --install` installs: headers, libraries, the program, a CMake package and a pkg-config
# file. No installed file contains the prefix, so the prefix can be moved afterwards.

if(NOT CONNECTOR_INSTALL)
    return()
endif()

include(CMakePackageConfigHelpers)

set(connector_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/connector-configuration")
set(connector_pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# connector_relative_path(FROM TO RESULT): the relative path from one installed directory to another
function(connector_relative_path from to result)
    file(RELATIVE_PATH path "/${from}" "/${to}")
    string(REGEX REPLACE "/$" "" path "${path}")
    set(${result} "${path}" PARENT_SCOPE)
endfunction()

# connector_install_headers(DIRECTORY DESTINATION): the headers below a directory, except private
# ones
include(PrivateHeaders)
list(JOIN connector_private_rooms "|" connector_uninstalled_regex)
list(JOIN connector_uninstalled_directories "|" connector_uninstalled_directories_regex)
string(APPEND connector_uninstalled_regex "|${connector_uninstalled_directories_regex}")
function(connector_install_headers directory destination)
    install(DIRECTORY "${directory}/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${destination}"
        FILES_MATCHING PATTERN "*.hpp"
        PATTERN detail EXCLUDE
        REGEX "/(${connector_uninstalled_regex})$" EXCLUDE ${ARGN})
endfunction()

# connector_install_component(NAME): connector-NAME as the component NAME of the package
function(connector_install_component name)
    connector_install_headers("${PROJECT_SOURCE_DIR}/connector/${name}" "connector/${name}")
    install(TARGETS connector-${name} EXPORT connector-${name}-targets)
    install(EXPORT connector-${name}-targets
        NAMESPACE connector::
        DESTINATION "${connector_package_dir}")
endfunction()

# The library
connector_install_headers("${PROJECT_SOURCE_DIR}/connector" connector
    REGEX "/connector/(etcd|service|sources|testing)$" EXCLUDE)
foreach(header IN LISTS connector_installed_private_headers)
    cmake_path(GET header PARENT_PATH parent)
    install(FILES "${PROJECT_SOURCE_DIR}/${header}"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${parent}")
endforeach()
install(FILES "${PROJECT_BINARY_DIR}/connector/include/connector/Export.hpp"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/connector")
install(TARGETS connector-configuration EXPORT connector-configuration-targets)

# The platform. If the application has its own, connector-platform is only an interface to that, and
# has no files.
if(TARGET connector-platform)
    install(TARGETS connector-platform EXPORT connector-configuration-targets)
endif()
if(NOT CONNECTOR_PLATFORM)
    connector_install_headers("${PROJECT_SOURCE_DIR}/platform" "")
    connector_install_headers("${PROJECT_SOURCE_DIR}/messaging" "")
    install(FILES "${PROJECT_BINARY_DIR}/platform/include/connector/platform/Export.hpp"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/connector/platform")
endif()

# The components of the package
if(TARGET connector-sources)
    connector_install_component(sources)
    install(FILES "${PROJECT_BINARY_DIR}/connector/sources/include/connector/sources/Export.hpp"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/connector/sources")
endif()
if(TARGET connector-service)
    connector_install_component(service)
    install(FILES "${PROJECT_BINARY_DIR}/connector/service/include/connector/service/Export.hpp"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/connector/service")
endif()
if(TARGET connector-etcd)
    connector_install_component(etcd)
    install(FILES "${PROJECT_BINARY_DIR}/connector/etcd/include/connector/etcd/Export.hpp"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/connector/etcd")
endif()
if(TARGET connector-testing)
    connector_install_component(testing)
endif()

# The program
if(TARGET connector-config)
    connector_relative_path("${CMAKE_INSTALL_BINDIR}" "${CMAKE_INSTALL_LIBDIR}" bin_to_lib)
    set_target_properties(connector-config PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
    install(TARGETS connector-config)
    set(network_destination "${CMAKE_INSTALL_LIBEXECDIR}/connector-config")
    connector_relative_path("${network_destination}" "${CMAKE_INSTALL_LIBDIR}" network_to_lib)
    set_target_properties(connector-config-network PROPERTIES
        INSTALL_RPATH "$ORIGIN/${network_to_lib}")
    install(TARGETS connector-config-network DESTINATION "${network_destination}")
endif()

install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}")

# find_package(connector-configuration)
install(EXPORT connector-configuration-targets
    NAMESPACE connector::
    DESTINATION "${connector_package_dir}")
configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/connector-configuration-config.cmake.in"
    "${PROJECT_BINARY_DIR}/cmake/connector-configuration-config.cmake"
    INSTALL_DESTINATION "${connector_package_dir}"
    NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(
    "${PROJECT_BINARY_DIR}/cmake/connector-configuration-config-version.cmake"
    COMPATIBILITY SameMinorVersion) # until 1.0, see docs/abi-policy.md
install(FILES
    "${PROJECT_BINARY_DIR}/cmake/connector-configuration-config.cmake"
    "${PROJECT_BINARY_DIR}/cmake/connector-configuration-config-version.cmake"
    DESTINATION "${connector_package_dir}")

# pkg-config. If the application has its own platform, it must add the flags of that.
set(connector_platform_libs "-lconnector-platform -lboost_log -lboost_thread")
if(CONNECTOR_PLATFORM)
    set(connector_platform_libs "")
endif()
# Applications use Boost and POCO, too, so these are in Libs. Static libraries need nothing more.
set(connector_static_definitions "")
if(NOT BUILD_SHARED_LIBS)
    set(connector_static_definitions " -DCONNECTOR_STATIC_DEFINE -DCONNECTOR_PLATFORM_STATIC_DEFINE")
endif()
connector_relative_path("${connector_pkgconfig_dir}" "" pkgconfig_to_prefix)
configure_file("${CMAKE_CURRENT_LIST_DIR}/connector-configuration.pc.in"
    "${PROJECT_BINARY_DIR}/cmake/connector-configuration.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/cmake/connector-configuration.pc"
    DESTINATION "${connector_pkgconfig_dir}")
if(TARGET connector-sources)
    set(connector_sources_static_definitions "")
    set(connector_sources_static_libs "")
    if(NOT BUILD_SHARED_LIBS)
        set(connector_sources_static_definitions "-DCONNECTOR_SOURCES_STATIC_DEFINE")
        set(connector_sources_static_libs "-lyaml-cpp -ltomlplusplus")
    endif()
    configure_file("${CMAKE_CURRENT_LIST_DIR}/connector-sources.pc.in"
        "${PROJECT_BINARY_DIR}/cmake/connector-sources.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/cmake/connector-sources.pc"
        DESTINATION "${connector_pkgconfig_dir}")
endif()
if(TARGET connector-service)
    set(connector_service_static_definitions "")
    set(connector_service_static_libs "")
    if(NOT BUILD_SHARED_LIBS)
        set(connector_service_static_definitions "-DCONNECTOR_SERVICE_STATIC_DEFINE")
        set(connector_service_static_libs "-lssl -lcrypto")
    endif()
    configure_file("${CMAKE_CURRENT_LIST_DIR}/connector-service.pc.in"
        "${PROJECT_BINARY_DIR}/cmake/connector-service.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/cmake/connector-service.pc"
        DESTINATION "${connector_pkgconfig_dir}")
endif()
if(TARGET connector-etcd)
    set(connector_etcd_static_definitions "")
    set(connector_etcd_static_requires "")
    if(NOT BUILD_SHARED_LIBS)
        set(connector_etcd_static_definitions "-DCONNECTOR_ETCD_STATIC_DEFINE")
        set(connector_etcd_static_requires ", grpc++, protobuf-lite")
    endif()
    configure_file("${CMAKE_CURRENT_LIST_DIR}/connector-etcd.pc.in"
        "${PROJECT_BINARY_DIR}/cmake/connector-etcd.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/cmake/connector-etcd.pc"
        DESTINATION "${connector_pkgconfig_dir}")
endif()
