# The private headers of the library, besides those in detail/ folders.

# Rooms whose headers are not installed
set(connector_private_rooms
    connector/configuration/properties
    connector/configuration/properties/lint
    connector/configuration/registry
    connector/configuration/watching)

# Headers of private rooms that are installed: public headers include them, or applications do
set(connector_installed_private_headers
    connector/async/detail/Errors.hpp
    connector/async/detail/PreallocatedResults.hpp
    connector/configuration/properties/Finding.hpp
    connector/configuration/properties/Lint.hpp
    connector/configuration/registry/ConfigurationSourceMap.hpp
    connector/configuration/sources/detail/OwnTable.hpp
    connector/configuration/sources/detail/SnapshotSource.hpp
    connector/configuration/typed/detail/Check.hpp
    connector/configuration/typed/detail/Conversion.hpp
    connector/configuration/typed/detail/Equality.hpp
    connector/configuration/typed/detail/Facets.hpp
    connector/configuration/typed/detail/Follower.hpp
    connector/configuration/typed/detail/JsonText.hpp
    connector/configuration/typed/detail/ListText.hpp
    connector/configuration/typed/detail/NumberText.hpp
    connector/configuration/typed/detail/OptionFollower.hpp
    connector/configuration/typed/detail/OptionType.hpp
    connector/configuration/typed/detail/Scalars.hpp
    connector/configuration/typed/detail/SchemaCore.hpp
    connector/configuration/typed/detail/Secrets.hpp
    connector/configuration/typed/detail/SettingsFollower.hpp
    connector/configuration/typed/detail/StreamLink.hpp
    connector/configuration/typed/detail/Texts.hpp
    connector/configuration/typed/detail/Unicode.hpp
    connector/configuration/typed/detail/UnitText.hpp
    connector/configuration/typed/detail/ValueCell.hpp
    connector/configuration/typed/detail/Writing.hpp
    connector/configuration/watching/OptionStreams.hpp)

# Directories that are not installed, although their rooms are not private: the program contains
# them, too
set(connector_uninstalled_directories
    connector/service/access
    connector/service/client
    connector/service/events
    connector/service/http
    connector/service/messages
    connector/service/metrics
    connector/service/network
    connector/service/protocol
    connector/service/routes
    connector/service/text)

# Those of them that applications include by name, so they are part of the interface
set(connector_public_headers_in_private_rooms
    connector/configuration/properties/Finding.hpp
    connector/configuration/properties/Lint.hpp)
