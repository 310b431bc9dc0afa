#include <connector/configuration/typed/LiveOption.hpp>

#include <connector/configuration/detail/Errors.hpp>

#include <stdexcept>

namespace connector::configuration::detail {

void throwNoFirstValue(const std::optional<InvalidOption>& problem, const std::string& key) {
    if (problem)
        throw InvalidOption(*problem);
    throw std::runtime_error(errors::noSuchOption + key);
}

} // namespace connector::configuration::detail
