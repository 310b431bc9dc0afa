/// What the first line of a request asks for.
#pragma once

#include <optional>
#include <string>

namespace connector_config::serve {

struct Target {
    std::optional<std::string> authority; ///< of the absolute form, http://AUTHORITY/PATH?QUERY
    std::string path;                     ///< with the query, as they came
};

Target parseTarget(const std::string& text);

} // namespace connector_config::serve
