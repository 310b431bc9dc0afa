/// How a worker reads options for EventHub.
#pragma once

#include <connector/service/events/EventHub.hpp>
#include <connector/service/network/Task.hpp>

#include <connector/configuration/Option.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace connector::service {

/// An option that a worker is to read.
struct EventHub::Wanted {
    std::string key;
    bool isChange; // all clients are told the value, not only those that wait for it
};

/// An option as a worker has read it.
struct EventHub::Answer {
    std::string key;
    std::shared_ptr<const std::string> text; // null if there is no such option
};

/// Reads options and makes the texts of their events.
class EventHub::Reading : public Task {
public:
    /// @param newHub  outlives this object
    Reading(EventHub& newHub, std::vector<Wanted> newWanted, std::vector<std::string> newPrefixes)
        : hub(newHub), wanted(std::move(newWanted)), prefixes(std::move(newPrefixes)) {}

    void work() noexcept override;
    void finish() noexcept override;

private:
    void readBelow(const std::string& prefix);
    void add(const configuration::Option& option);
    void read(const std::string& key);
    std::shared_ptr<const std::string> textOf(const configuration::Option& option) const;

    EventHub& hub;
    const std::vector<Wanted> wanted;
    const std::vector<std::string> prefixes;
    std::vector<Answer> answers;
    bool lacksMemory = false;
};

} // namespace connector::service
