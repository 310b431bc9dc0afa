#include <connector/configuration/detail/FailedSubscriber.hpp>

#include <iostream>

namespace connector::configuration::detail {

void reportFailedSubscriber(const std::string& key) noexcept {
    try {
        std::cerr << "Error in configuration value subscriber: " + key + '\n' << std::flush;
    } catch (...) { // the other subscribers still get the value
    }
}

} // namespace connector::configuration::detail
