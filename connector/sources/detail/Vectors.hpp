/// Arrays that are one option.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <optional>

namespace connector::sources::detail {

/// @return the vector that an array of scalars of one kind is; nothing for every other node, the
///         empty array included
std::optional<configuration::OptionValue> vectorOf(const Node& node);

} // namespace connector::sources::detail
