/// Parses the argument of --env.
#pragma once

#include <cstdint>
#include <string>

namespace connector_config {

struct EnvironmentArgument {
    std::string prefix;
    std::string name = "env"; ///< name of the source
    std::string group;
    std::int32_t order = 50;
};

/// Accepts a plain prefix or, if the text begins with "prefix=", the long form
///     prefix=P[,name=N][,group=G][,order=O]
/// The members after the prefix may come in any order, each at most once. Each value ends at the
/// next comma.
/// @throws WrongArguments
EnvironmentArgument parseEnvironmentArgument(const std::string& text);

} // namespace connector_config
