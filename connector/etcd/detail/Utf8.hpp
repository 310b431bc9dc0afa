/// The validity of texts.
#pragma once

#include <string_view>

namespace connector::etcd::detail {

/// @return whether the text is well-formed UTF-8
bool isUtf8(std::string_view text);

} // namespace connector::etcd::detail
