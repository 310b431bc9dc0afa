/// Environment variables as options.
#pragma once

#include <connector/sources/Export.hpp>
#include <connector/sources/TableSource.hpp>

#include <map>
#include <string>

namespace connector::sources {

/// Takes the variables when it is made, and stays as it is. All values are text, byte for byte.
/// Another thread must not change the environment meanwhile.
class CONNECTOR_SOURCES_EXPORT EnvironmentSource : public TableSource {
public:
    /// Takes all variables whose names begin with the prefix. The rest of the name, in lower case
    /// (ASCII), with "." for "__", is the key: with the prefix "APP_", APP_NET__PORT is "net.port",
    /// and three underscores are a dot and an underscore. The variable that is the prefix alone is
    /// ignored.
    /// @throws std::invalid_argument "Two environment variables for one key: NAME, NAME"
    explicit EnvironmentSource(const std::string& prefix);

    /// Takes the variables that the map names, for the keys that it gives. A variable that is not
    /// set gives no key.
    /// @throws std::invalid_argument "Two environment variables for one key: NAME, NAME"
    explicit EnvironmentSource(const std::map<std::string, std::string>& keyOfVariable);

    /// For a literal, which could be either.
    explicit EnvironmentSource(const char* prefix);

    ~EnvironmentSource() override;
};

} // namespace connector::sources
