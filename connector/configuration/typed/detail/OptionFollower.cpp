#include <connector/configuration/typed/detail/OptionFollower.hpp>

#include <connector/configuration/typed/OptionReading.hpp>
#include <connector/configuration/typed/detail/Texts.hpp>

#include <stdexcept>

namespace connector::configuration::detail {

Configuration& demand(const std::shared_ptr<Configuration>& configuration) {
    if (!configuration)
        throw std::invalid_argument(texts::nullConfiguration);
    return *configuration;
}

OptionFollower::OptionFollower(const std::weak_ptr<Configuration>& newConfiguration,
                               const std::string& newKey)
    : Follower(newKey), configuration(newConfiguration) {
}

OptionFollower::~OptionFollower() = default;

void OptionFollower::link(Configuration& followed, const std::weak_ptr<Follower>& self) {
    stream.emplace(followed, key, self);
}

bool OptionFollower::read() {
    std::optional<Option> option;
    if (const auto alive = configuration.lock()) // released before the report
        option = findOption(*alive, key);
    return option && take(*std::move(option));
}

bool OptionFollower::refuse(Option&& option, const std::string& expected) {
    if (refused && refused->source == option.source && refused->value == option.value)
        return false;
    problem.emplace(option, expected);
    refused.emplace(std::move(option));
    return true;
}

bool OptionFollower::accept() {
    const bool wasThere = refused.has_value();
    refused.reset();
    problem.reset();
    return wasThere;
}

void OptionFollower::release() noexcept {
    stream.reset();
}

} // namespace connector::configuration::detail
