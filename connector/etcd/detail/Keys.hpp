/// Keys of etcd and keys of options.
#pragma once

#include <string>
#include <string_view>

namespace connector::etcd::detail {

/// @param prefix  not empty
/// @return the first key after all keys with the prefix, as etcd's ranges need it
std::string endOfPrefix(std::string prefix);

/// @param local  a key without the prefix
/// @return whether an option can have this key: it is not empty and UTF-8
bool isOptionKey(std::string_view local);

/// @return a key in the range of the prefix that is never an option, because it is not UTF-8
std::string probeKey(const std::string& prefix);

} // namespace connector::etcd::detail
