# The platform of an application that has its own: here the bundled one, installed elsewhere and under
# another name. PLATFORM_PREFIX is where it lies.
find_package(Boost 1.74 REQUIRED COMPONENTS log)
find_package(Poco REQUIRED COMPONENTS Foundation JSON)

add_library(application::platform SHARED IMPORTED)
set_target_properties(application::platform PROPERTIES
    IMPORTED_LOCATION "${PLATFORM_PREFIX}/lib/libapplication-platform.so"
    INTERFACE_INCLUDE_DIRECTORIES "${PLATFORM_PREFIX}/include"
    INTERFACE_LINK_LIBRARIES "Boost::log;Poco::Foundation;Poco::JSON")
