/// The target of an HTTP request, from its first line.
#pragma once

#include <optional>
#include <string_view>

namespace connector::service {

struct RequestTarget {
    std::optional<std::string_view> authority; ///< only in the absolute form, see scheme
    std::string_view scheme;                   ///< "http" or "https", in the absolute form
    std::string_view path;                     ///< with the query, not decoded
};

/// @param text  must outlive the result
RequestTarget parseRequestTarget(std::string_view text);

} // namespace connector::service
