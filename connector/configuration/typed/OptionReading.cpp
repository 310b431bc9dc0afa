#include <connector/configuration/typed/OptionReading.hpp>

#include <connector/configuration/detail/Errors.hpp>

#include <stdexcept>

namespace connector::configuration::detail {

std::optional<Option> findOption(Configuration& configuration, const std::string& key) {
    Future<Option> answer = configuration.getOption(key); // a source's exception propagates
    try {
        return answer.get();
    } catch (const std::runtime_error& failure) {
        if (failure.what() != errors::noSuchOption + key)
            throw;
        return std::nullopt;
    }
}

} // namespace connector::configuration::detail
