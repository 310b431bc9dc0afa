# The private headers of the library, besides those in detail/ folders.

# Rooms whose headers are not installed
set(connector_private_rooms
    connector/configuration/properties
    connector/configuration/registry
    connector/configuration/watching)

# Private headers that are installed, because public headers include them
set(connector_installed_private_headers
    connector/async/detail/Errors.hpp
    connector/async/detail/PreallocatedResults.hpp
    connector/configuration/registry/ConfigurationSourceMap.hpp
    connector/configuration/watching/OptionStreams.hpp)

# Directories that are not installed, although their rooms are not private: not a library yet
set(connector_uninstalled_directories
    connector/service)
