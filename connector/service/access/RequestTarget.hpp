/// The target of an HTTP request, from its first line.
#pragma once

#include <optional>
#include <string>

namespace connector::service {

struct RequestTarget {
    std::optional<std::string> authority; ///< only in the absolute form http://AUTHORITY/PATH?QUERY
    std::string pathAndQuery;             ///< not decoded
};

RequestTarget parseRequestTarget(const std::string& text);

} // namespace connector::service
