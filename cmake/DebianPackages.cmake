# `cpack -G DEB` in the build directory: one package for each component.
# packaging/debian has what goes into them besides the installed files.

set(CONNECTOR_DEBIAN_MAINTAINER "Configuration Library Maintainers <maintainers@connector-configuration.example>"
    CACHE STRING "Name and mail address in the Debian packages")
set(CONNECTOR_DEBIAN_REVISION 1 CACHE STRING "Revision of the Debian packages of this version")
mark_as_advanced(CONNECTOR_DEBIAN_MAINTAINER CONNECTOR_DEBIAN_REVISION)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME connector-configuration)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CONNECTOR_DEBIAN_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_RELEASE "${CONNECTOR_DEBIAN_REVISION}")
set(CPACK_DEBIAN_PACKAGE_SOURCE connector-configuration)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ${CONNECTOR_DEBUG_SYMBOLS})
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL configuration sources service etcd development program)

# Dependencies on libraries of Debian are what the linked libraries need. Dependencies between these
# packages are on the same version, because the libraries use private parts of each other.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    "${PROJECT_BINARY_DIR}/platform" "${PROJECT_BINARY_DIR}/connector"
    "${PROJECT_BINARY_DIR}/connector/sources" "${PROJECT_BINARY_DIR}/connector/service"
    "${PROJECT_BINARY_DIR}/connector/etcd")
set(connector_debian_version "${PROJECT_VERSION}-${CONNECTOR_DEBIAN_REVISION}")

# connector_debian_package(COMPONENT NAME SUMMARY DESCRIPTION [NEED...]): a NEED that is a component
# stands for its package in the same version.
function(connector_debian_package component name summary description)
    string(TOUPPER "${component}" id)
    set(depends "")
    foreach(need IN LISTS ARGN)
        if(TARGET connector-${need})
            set(need "libconnector-${need}${connector_soversion} (= ${connector_debian_version})")
        endif()
        list(APPEND depends "${need}")
    endforeach()
    list(JOIN depends ", " depends)
    set(CPACK_DEBIAN_${id}_PACKAGE_NAME "${name}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${id}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${id}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
endfunction()

set(connector_about "The library reads options from files and tables in memory,
reports which source supplied a value, converts and checks values,
and follows options while the program runs.")
connector_debian_package(configuration "libconnector-configuration${connector_soversion}"
    "C++ library for configuration options from named sources"
    "${connector_about}")
connector_debian_package(sources "libconnector-sources${connector_soversion}"
    "configuration options from JSON, YAML and TOML files"
    "This package has the sources for files of all formats, which are
reloaded when they change, and for environment variables.\n.\n${connector_about}"
    configuration)
connector_debian_package(service "libconnector-service${connector_soversion}"
    "configuration options of a running process over HTTP"
    "This package has the service that other processes ask over HTTP, with
or without TLS, on TCP and Unix sockets, and its client.\n.\n${connector_about}"
    configuration)
connector_debian_package(etcd "libconnector-etcd${connector_soversion}"
    "configuration options that many machines share on etcd"
    "This package has the source that reads the keys below a prefix of etcd,
follows every change, and writes.\n.\n${connector_about}"
    configuration sources)
connector_debian_package(development libconnector-configuration-dev
    "C++ library for configuration options (development files)"
    "This package has the headers of all libraries, a conformance kit for
authors of sources, and files for CMake and pkg-config.\n.\n${connector_about}"
    configuration sources service etcd libboost-log-dev libpoco-dev)
set(connector_program_needs configuration)
set(connector_linked "")
foreach(target IN ITEMS connector-config-parts connector-config-network)
    get_target_property(libraries ${target} LINK_LIBRARIES)
    list(APPEND connector_linked ${libraries})
endforeach()
foreach(library IN ITEMS sources service etcd)
    if("connector::${library}" IN_LIST connector_linked)
        list(APPEND connector_program_needs ${library})
    endif()
endforeach()
connector_debian_package(program connector-config
    "show configuration options and where they come from"
    "The program shows the value of an option and which source supplies it,
follows options, checks property files, and serves options over HTTP. A
unit for systemd runs it as a service without privileges.\n.\n${connector_about}"
    ${connector_program_needs})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "libgtest-dev, pkgconf | pkg-config")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION utils)

# Only the packages have the unit, since it names the program with its path.
install(FILES "${PROJECT_SOURCE_DIR}/packaging/connector-config@.service"
    DESTINATION lib/systemd/system COMPONENT program EXCLUDE_FROM_ALL)

# What the scripts before and after packaging need
set(CPACK_CONNECTOR_SOURCE_DIR "${PROJECT_SOURCE_DIR}")
set(CPACK_CONNECTOR_SOVERSION "${connector_soversion}")
set(CPACK_CONNECTOR_DEBIAN_VERSION "${connector_debian_version}")
set(CPACK_CONNECTOR_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
set(CPACK_CONNECTOR_ARCHITECTURE "${CMAKE_LIBRARY_ARCHITECTURE}") # names the directory in Debian
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/debian/Prepare.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/debian/Finish.cmake")
include(CPack)
