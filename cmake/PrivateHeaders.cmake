# The private headers of the library, besides those in detail/ folders.

# Rooms whose headers are not installed
set(connector_private_rooms
    connector/configuration/properties
    connector/configuration/registry
    connector/configuration/watching)

# Private headers that are installed, because public headers include them
set(connector_installed_private_headers
    connector/async/detail/Errors.hpp
    connector/configuration/registry/ConfigurationSourceMap.hpp
    connector/configuration/watching/OptionStreams.hpp)
