#include <connector/service/events/EventHubReading.hpp>

#include <connector/service/text/Json.hpp>

#include <new>
#include <stdexcept>

namespace connector::service {

using configuration::Option;

void EventHub::Reading::work() noexcept {
    try {
        hub.listenOnce(); // before the values are read, so that no change is missed
        for (const std::string& prefix : prefixes)
            readBelow(prefix);
        for (const Wanted& option : wanted)
            read(option.key);
    } catch (const std::bad_alloc&) {
        lacksMemory = true;
    }
}

void EventHub::Reading::finish() noexcept {
    hub.isReading = false;
    try {
        hub.apply(wanted, answers);
    } catch (const std::bad_alloc&) {
        lacksMemory = true;
    }
    hub.begin(hub.startingSessions);
    hub.lacksMemory = lacksMemory;
    hub.signal->raise();
}

/// A source of the application's may fail. Clients then keep the values that they have.
void EventHub::Reading::readBelow(const std::string& prefix) {
    try {
        for (const Option& option : hub.configuration.optionsBelow(prefix))
            add(option);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
    }
}

/// A value of the application's may be no valid text. It must not hide the others.
void EventHub::Reading::add(const Option& option) {
    try {
        answers.push_back({option.key, textOf(option)});
    } catch (const std::runtime_error&) {
    }
}

void EventHub::Reading::read(const std::string& key) {
    try {
        const std::vector<Option> option = hub.configuration.optionsOf({key});
        answers.push_back({key, option.empty() ? nullptr : textOf(option.front())});
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
    }
}

std::shared_ptr<const std::string> EventHub::Reading::textOf(const Option& option) const {
    std::string text = "data: ";
    text += optionJson(hub.secrets.masked(option));
    text += "\n\n";
    return std::make_shared<const std::string>(std::move(text));
}

} // namespace connector::service
