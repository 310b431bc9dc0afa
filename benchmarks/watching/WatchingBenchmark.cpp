/// The cost of changing an option that is watched, and of one beside which others are watched.
#include "Set.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <boost/signals2.hpp>

#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace {

using bench::watching::Keeper;
using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using connector::reactive_streams::Subscriber;
using connector::reactive_streams::Subscription;

class KeepingSubscriber : public Subscriber<OptionValue> {
public:
    void onSubscribe(std::weak_ptr<Subscription> subscription) override {
        subscription.lock()->request(std::numeric_limits<std::uint64_t>::max());
    }
    void onComplete() override {}
    void onNext(const OptionValue& value) override { keeper.keep(value); }
    void onError(std::exception_ptr) override {}

    Keeper keeper;
};

class Ours {
public:
    explicit Ours(int watchers, int others = 0) {
        for (int i = 0; i < others; ++i) {
            const auto subscriber = std::make_shared<KeepingSubscriber>();
            configuration->watchOption(bench::keyNumber(i))->subscribe(subscriber);
        }
        for (int i = 0; i < watchers; ++i) {
            subscribers.push_back(std::make_shared<KeepingSubscriber>());
            configuration->watchOption("net.port")->subscribe(subscribers.back());
        }
    }

    void set(const OptionValue& value) { configuration->set("net.port", value).get(); }

    bool allHold(const OptionValue& value) const {
        for (const auto& subscriber : subscribers) {
            if (!subscriber->keeper.holds(value))
                return false;
        }
        return true;
    }

private:
    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    std::vector<std::shared_ptr<KeepingSubscriber>> subscribers;
};

/// The minimal cost: one call for each watcher, under a mutex that no other thread locks.
class Floor {
public:
    explicit Floor(int watchers) : keepers(static_cast<std::size_t>(watchers)) {
        for (GuardedKeeper& guarded : keepers)
            functions.emplace_back([&guarded](const OptionValue& value) {
                const std::lock_guard<std::mutex> lock(guarded.mutex);
                guarded.keeper.keep(value);
            });
    }

    void set(const OptionValue& value) {
        option = value;
        for (const auto& function : functions)
            function(option);
    }

    bool allHold(const OptionValue& value) const {
        for (const GuardedKeeper& guarded : keepers) {
            if (!guarded.keeper.holds(value))
                return false;
        }
        return true;
    }

private:
    struct GuardedKeeper {
        std::mutex mutex;
        Keeper keeper;
    };
    OptionValue option;
    std::vector<GuardedKeeper> keepers;
    std::vector<std::function<void(const OptionValue&)>> functions;
};

/// The documented behaviour step by step: every change copies the list of all streams and searches
/// it.
class Literal {
public:
    Literal(int watchers, int others) {
        for (int i = 0; i < others; ++i)
            watch(bench::keyNumber(i));
        for (int i = 0; i < watchers; ++i)
            watch("net.port");
    }

    void set(const OptionValue& value) {
        const std::string key = "net.port";
        std::unique_lock<std::recursive_mutex> lock(mutex);
        option = value;
        const OptionValue current = option;
        const std::vector<Stream> copy = streams;
        lock.unlock();
        for (const Stream& stream : copy) {
            if (stream.key == key)
                stream.publisher->onNext(OptionValue(current));
        }
        lock.lock();
    }

    bool allHold(const OptionValue& value) const {
        for (std::size_t i = 0; i < streams.size(); ++i) {
            if (streams[i].key == "net.port" && !subscribers[i]->keeper.holds(value))
                return false;
        }
        return true;
    }

private:
    using Publisher = ConfigurationImpl::OptionPublisher;
    struct Stream {
        std::uint64_t id;
        std::string key;
        std::shared_ptr<Publisher> publisher;
    };

    void watch(const std::string& key) {
        streams.push_back({streams.size(), key, std::make_shared<Publisher>([] {}, 1)});
        subscribers.push_back(std::make_shared<KeepingSubscriber>());
        streams.back().publisher->subscribe(subscribers.back());
    }

    std::recursive_mutex mutex;
    OptionValue option;
    std::vector<Stream> streams;
    std::vector<std::shared_ptr<KeepingSubscriber>> subscribers;
};

class Signals {
public:
    explicit Signals(int watchers) : keepers(static_cast<std::size_t>(watchers)) {
        for (Keeper& keeper : keepers)
            signal.connect([&keeper](const OptionValue& value) { keeper.keep(value); });
    }

    void set(const OptionValue& value) {
        option = value;
        signal(option);
    }

    bool allHold(const OptionValue& value) const {
        for (const Keeper& keeper : keepers) {
            if (!keeper.holds(value))
                return false;
        }
        return true;
    }

private:
    OptionValue option;
    std::vector<Keeper> keepers;
    boost::signals2::signal<void(const OptionValue&)> signal;
};

/// One watcher, and streams of other keys.
template <typename Contestant>
void addBesideOthers(const std::string& contestant) {
    for (const int others : {0, 1000})
        bench::add("watching", "set, 1 watcher, " + std::to_string(others) + " other streams",
                   contestant, [=](benchmark::State& state) {
                       bench::watching::set<Contestant>(state, 0, 1, others);
                   });
}

[[maybe_unused]] const bool registered = [] {
    bench::watching::addManyWatchers<Ours>("ours");
    bench::watching::addManyWatchers<Floor>("floor");
    bench::watching::addManyWatchers<Signals>("signals2");
    addBesideOthers<Ours>("ours");
    addBesideOthers<Literal>("literal");
    return true;
}();

} // namespace
