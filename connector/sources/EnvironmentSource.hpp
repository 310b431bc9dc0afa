/// Environment variables as options.
#pragma once

#include <connector/sources/Export.hpp>
#include <connector/sources/TableSource.hpp>

#include <map>
#include <string>

namespace connector::sources {

/// Reads the variables during construction and does not change afterwards. All values are text,
/// byte for byte. No other thread may change the environment during construction.
class CONNECTOR_SOURCES_EXPORT EnvironmentSource : public TableSource {
public:
    /// Reads all variables whose names begin with the prefix. The rest of the name, in lower case
    /// (ASCII), with "." for "__", is the key: with the prefix "APP_", APP_NET__PORT is "net.port",
    /// and three underscores are a dot and an underscore. A variable whose name is only the prefix
    /// is ignored.
    /// @throws std::invalid_argument "Two environment variables for one key: NAME, NAME"
    explicit EnvironmentSource(const std::string& prefix);

    /// Reads the variables that the map lists, each under the key that the map gives it. A variable
    /// that is not set adds no key.
    /// @throws std::invalid_argument "Two environment variables for one key: NAME, NAME"
    explicit EnvironmentSource(const std::map<std::string, std::string>& keyOfVariable);

    /// Resolves the ambiguity of a literal, which converts to either parameter type.
    explicit EnvironmentSource(const char* prefix);

    ~EnvironmentSource() override;
};

} // namespace connector::sources
