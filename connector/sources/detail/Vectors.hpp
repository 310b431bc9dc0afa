/// Arrays that become a single option.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <optional>

namespace connector::sources::detail {

/// @return the vector for an array of scalars of one kind; nothing for every other node, including
///         the empty array
std::optional<configuration::OptionValue> vectorOf(const Node& node);

} // namespace connector::sources::detail
