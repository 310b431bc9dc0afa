#include <connector/etcd/Values.hpp>

#include <connector/etcd/detail/ValueText.hpp>

namespace connector::etcd {

std::optional<configuration::OptionValue> parseValue(std::string_view text) {
    return detail::readValue(text);
}

} // namespace connector::etcd
