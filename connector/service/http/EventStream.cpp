#include <connector/service/http/EventStream.hpp>

#include <connector/service/text/Json.hpp>

#include <utility>

namespace connector::service {

using Lock = std::lock_guard<std::mutex>;

void EventStream::onSubscribe(std::weak_ptr<reactive_streams::Subscription> newSubscription) {
    subscription = std::move(newSubscription);
    requestNext();
}

void EventStream::onNext(const OptionValue& value) {
    Option option{key, currentSource(), value};
    {
        const Lock lock(mutex);
        pending = std::move(option);
    }
    wake();
}

/// @return an empty string if the option has been removed in the meantime
std::string EventStream::currentSource() const {
    try {
        return configuration.getOption(key).get().source;
    } catch (const std::exception&) {
        return {};
    }
}

void EventStream::end() {
    {
        const Lock lock(mutex);
        ended = true;
    }
    wake();
}

std::optional<Option> EventStream::take() {
    const Lock lock(mutex);
    return std::exchange(pending, std::nullopt);
}

void EventStream::requestNext() {
    if (const auto alive = subscription.lock())
        alive->request(1);
}

void EventStream::cancel() {
    if (const auto alive = subscription.lock())
        alive->cancel();
    const Lock lock(mutex);
    ended = true;
}

bool EventStream::hasEnded() const {
    const Lock lock(mutex);
    return ended;
}

std::string formatEvent(const Option& option) {
    return "data: " + jsonText(toJson(option)) + "\n\n";
}

} // namespace connector::service
