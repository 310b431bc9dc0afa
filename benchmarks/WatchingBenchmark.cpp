/// What a change of an option costs when the option is watched, and when others are.
#include "Harness.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <Poco/Delegate.h>
#include <Poco/Util/MapConfiguration.h>
#include <boost/signals2.hpp>

#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using connector::reactive_streams::Subscriber;
using connector::reactive_streams::Subscription;

/// What every watcher does with a value, whoever brings it: it keeps a copy of its own.
class Keeper {
public:
    void keep(const OptionValue& value) { newest.emplace(value); }
    bool holds(const OptionValue& value) const { return newest == value; }

private:
    std::optional<OptionValue> newest;
};

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

/// The least there is to do: a call for each watcher, under a mutex of its own that nobody wants.
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

/// The rules word for word: every change copies the list of all streams and looks for its key there.
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

/// Its events carry text, whatever is set.
class PocoEvents {
public:
    explicit PocoEvents(int watchers) : listeners(static_cast<std::size_t>(watchers)) {
        for (Listener& listener : listeners)
            configuration->propertyChanged += Poco::delegate(&listener, &Listener::onChange);
    }

    void set(const OptionValue& value) {
        if (const int* const number = boost::get<int>(&value))
            configuration->setInt("net.port", *number);
        else
            configuration->setString("net.port", boost::get<std::string>(value));
    }

    bool allHold(const OptionValue& value) const {
        const int* const number = boost::get<int>(&value);
        const OptionValue text = number == nullptr ? value : OptionValue(std::to_string(*number));
        for (const Listener& listener : listeners) {
            if (!listener.keeper.holds(text))
                return false;
        }
        return true;
    }

private:
    struct Listener {
        void onChange(const Poco::Util::AbstractConfiguration::KeyValue& change) {
            keeper.keep(change.value());
        }
        Keeper keeper;
    };
    std::vector<Listener> listeners;
    Poco::AutoPtr<Poco::Util::MapConfiguration> configuration{new Poco::Util::MapConfiguration};
};

OptionValue valueNumber(int number, std::size_t length) {
    if (length == 0)
        return number;
    return bench::textNumber(number, length);
}

/// Sets two values in turn.
template <typename Contestant, typename... Size>
void set(benchmark::State& state, std::size_t length, Size... sizes) {
    Contestant contestant(sizes...);
    const OptionValue values[] = {valueNumber(1, length), valueNumber(2, length)};
    std::size_t next = 0;
    for (auto _ : state) {
        contestant.set(values[next]);
        next = 1 - next;
    }
    if (!contestant.allHold(values[1 - next]))
        state.SkipWithError("a watcher missed the last value");
}

void addSetWithManyWatchers(int watchers, std::size_t length) {
    const auto add = [&](const char* contestant, void (*run)(benchmark::State&, std::size_t, int)) {
        bench::add("watching",
                   "set, " + std::to_string(watchers) + " watchers, " +
                       (length == 0 ? "int" : std::to_string(length) + " bytes"),
                   contestant, [=](benchmark::State& state) { run(state, length, watchers); });
    };
    add("ours", set<Ours, int>);
    add("floor", set<Floor, int>);
    add("signals2", set<Signals, int>);
    add("POCO", set<PocoEvents, int>);
}

void addSetBesideOthers(int others) {
    const auto add = [&](const char* contestant,
                         void (*run)(benchmark::State&, std::size_t, int, int)) {
        bench::add("watching", "set, 1 watcher, " + std::to_string(others) + " other streams",
                   contestant, [=](benchmark::State& state) { run(state, 0, 1, others); });
    };
    add("ours", set<Ours, int, int>);
    add("literal", set<Literal, int, int>);
}

const bool added = [] {
    for (const int watchers : {1, 10, 1000}) {
        addSetWithManyWatchers(watchers, 0);
        addSetWithManyWatchers(watchers, 40);
    }
    for (const int others : {0, 1000})
        addSetBesideOthers(others);
    return true;
}();

} // namespace
