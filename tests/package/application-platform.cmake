# An application's own platform: here the bundled one with another name, installed in
# PLATFORM_PREFIX.
find_package(Boost 1.74 REQUIRED COMPONENTS log)
find_package(Poco REQUIRED COMPONENTS Foundation JSON)

add_library(application::platform SHARED IMPORTED)
set_target_properties(application::platform PROPERTIES
    IMPORTED_LOCATION "${PLATFORM_PREFIX}/lib/libapplication-platform.so"
    INTERFACE_INCLUDE_DIRECTORIES "${PLATFORM_PREFIX}/include"
    INTERFACE_LINK_LIBRARIES "Boost::log;Poco::Foundation;Poco::JSON")
