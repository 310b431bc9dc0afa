#include <connector/etcd/detail/Keys.hpp>

#include <connector/etcd/detail/Utf8.hpp>

namespace connector::etcd::detail {

std::string endOfPrefix(std::string prefix) {
    while (!prefix.empty() && prefix.back() == '\xFF')
        prefix.pop_back();
    if (prefix.empty())
        return std::string(1, '\0'); // in etcd: up to the last key
    ++prefix.back();
    return prefix;
}

bool isOptionKey(std::string_view local) {
    return !local.empty() && isUtf8(local);
}

std::string probeKey(const std::string& prefix) {
    return prefix + '\xFF';
}

} // namespace connector::etcd::detail
