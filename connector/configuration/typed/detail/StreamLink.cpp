#include <connector/configuration/typed/detail/StreamLink.hpp>

#include <connector/reactive_streams/Subscriber.hpp>
#include <connector/reactive_streams/Subscription.hpp>

#include <cstdint>
#include <exception>
#include <limits>
#include <utility>

namespace connector::configuration::detail {

class Hinter final : public reactive_streams::Subscriber<OptionValue> {
public:
    explicit Hinter(std::weak_ptr<Follower> newFollower) : follower(std::move(newFollower)) {}

    void onSubscribe(std::weak_ptr<reactive_streams::Subscription> newSubscription) override {
        subscription = std::move(newSubscription);
        if (const auto alive = subscription.lock())
            alive->request(std::numeric_limits<std::uint64_t>::max());
    }
    void onNext(const OptionValue&) override {
        if (const auto alive = follower.lock())
            alive->hint();
    }
    void onComplete() override {} // the configuration is destroyed: the last value stays
    void onError(std::exception_ptr) override {}

    void cancel() {
        if (const auto alive = subscription.lock())
            alive->cancel();
    }

private:
    const std::weak_ptr<Follower> follower;
    std::weak_ptr<reactive_streams::Subscription> subscription; // set once, by subscribe
};

StreamLink::StreamLink(Configuration& configuration, const std::string& key,
                       std::weak_ptr<Follower> follower)
    : hinter(std::make_shared<Hinter>(std::move(follower))) {
    configuration.watchOption(key)->subscribe(hinter);
}

StreamLink::StreamLink(StreamLink&& other) noexcept = default;

StreamLink::~StreamLink() {
    if (hinter)
        hinter->cancel();
}

} // namespace connector::configuration::detail
