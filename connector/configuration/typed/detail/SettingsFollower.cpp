#include <connector/configuration/typed/detail/SettingsFollower.hpp>

#include <connector/configuration/typed/detail/OptionFollower.hpp>

#include <algorithm>
#include <utility>

namespace connector::configuration::detail {

SettingsFollower::SettingsFollower(const std::string& prefix) : Follower(prefix) {
}

SettingsFollower::~SettingsFollower() = default;

void SettingsFollower::link(const std::shared_ptr<Configuration>& followed,
                            const std::weak_ptr<Follower>& self, const SchemaCore& declared) {
    Configuration& source = demand(followed);
    configuration = followed;
    streams.reserve(declared.options().size());
    for (const DeclaredOption& option : declared.options())
        streams.emplace_back(source, option.key, self);
}

std::vector<OptionProblem> SettingsFollower::problems() const {
    const std::lock_guard<std::mutex> lock(listMutex);
    return currentProblems;
}

void SettingsFollower::addListener(const std::weak_ptr<Follower>& listener) {
    const std::lock_guard<std::mutex> lock(listMutex);
    listeners.erase(std::remove_if(listeners.begin(), listeners.end(),
                                   [](const auto& other) { return other.expired(); }),
                    listeners.end());
    listeners.push_back(listener);
}

bool SettingsFollower::read() {
    const auto alive = configuration.lock();
    if (!alive)
        return false;
    bool isNew = false;
    std::vector<OptionProblem> newProblems = readSettings(*alive, isNew);
    const std::lock_guard<std::mutex> lock(listMutex);
    currentProblems.swap(newProblems);
    return isNew;
}

void SettingsFollower::tell() {
    std::vector<std::weak_ptr<Follower>> told;
    {
        const std::lock_guard<std::mutex> lock(listMutex);
        told = listeners;
    }
    for (const std::weak_ptr<Follower>& listener : told) {
        if (const auto alive = listener.lock())
            alive->hint();
    }
}

} // namespace connector::configuration::detail
