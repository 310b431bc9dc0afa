/// The rules for every source. Each function tests one rule and reports how a source breaks it.
///
/// SourceConformance.hpp defines tests for them. The functions are separate so that the kit itself
/// can be tested.
#pragma once

#include <connector/testing/Deadline.hpp>
#include <connector/testing/SourceFactory.hpp>
#include <connector/testing/Verdict.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <boost/variant/get.hpp>

#include <atomic>
#include <chrono>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace connector::testing {

/// The time after which the kit reports a deadlock.
inline constexpr std::chrono::milliseconds deadlockTime{10'000};

namespace kit {

using configuration::ConfigurationSource;
using configuration::OptionValue;
using Table = SourceFactory::Table;

inline OptionValue text(const std::string& value) {
    return OptionValue(value);
}

inline Table someOptions() {
    return {{"a", text("one")}, {"net.port", text("80")}, {"net", text("up")}};
}

/// @return whether the source can be changed at all, from outside or with set
inline bool changes(const SourceFactory& factory) {
    return factory.change || factory.writable;
}

/// Gives an option a value, from outside if that is possible, otherwise with set.
inline void put(const SourceFactory& factory, ConfigurationSource& source, const std::string& key,
                const std::string& value) {
    if (factory.change)
        factory.change(source, key, text(value));
    else
        source.set(key, text(value));
}

/// @return the value; empty if the source does not have the key or the value has another type
inline std::string read(ConfigurationSource& source, const std::string& key) {
    if (!source.has(key))
        return "";
    const OptionValue value = source.get(key);
    const auto* const string = boost::get<std::string>(&value);
    return string != nullptr ? *string : "";
}

inline std::string joined(const std::set<std::string>& keys) {
    std::string all;
    for (const std::string& key : keys)
        all += (all.empty() ? "" : ", ") + key;
    return '{' + all + '}';
}

/// Records the keys that a watcher is called with, and their values at that time.
struct Told {
    std::vector<std::string> keys;
    std::vector<std::string> values;

    ConfigurationSource::Watcher watcher(ConfigurationSource& source) {
        return [this, &source](const std::string& key) {
            keys.push_back(key);
            values.push_back(read(source, key));
        };
    }

    /// @return "" if the watcher was called with the key once the value could be read; otherwise
    ///         what was missing
    std::string missing(const std::string& key, const std::string& value) const {
        bool wasTold = false;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            wasTold = wasTold || keys[i] == key;
            if (keys[i] == key && values[i] == value)
                return "";
        }
        return wasTold
                   ? "the watcher was called before the new value of \"" + key + "\" could be read"
                   : "the watcher was not called with \"" + key + "\"";
    }
};

} // namespace kit

/// 1. has returns true, and get returns the value, for exactly the keys of the source.
inline Verdict hasAndGetAgree(const SourceFactory& factory) {
    const auto source = factory.make(kit::someOptions());
    for (const auto& [key, value] : kit::someOptions()) {
        if (!source->has(key))
            return Verdict::brokenAs("has(\"" + key + "\") is false for a key of the source");
        if (!(source->get(key) == value))
            return Verdict::brokenAs("get(\"" + key + "\") is not the value of the source");
    }
    for (const char* const key : {"missing", "net.", "net.port.", "port", "A", "aa"}) {
        if (source->has(key))
            return Verdict::brokenAs("has(\"" + std::string(key) +
                                     "\") is true for a key that the source does not have");
    }
    return Verdict::kept();
}

/// 2. keys lists exactly the keys for which has returns true.
inline Verdict keysAreWhatHasAffirms(const SourceFactory& factory) {
    std::set<std::string> expected;
    for (const auto& entry : kit::someOptions())
        expected.insert(entry.first);
    const auto source = factory.make(kit::someOptions());
    if (source->keys() != expected)
        return Verdict::brokenAs("keys() is " + kit::joined(source->keys()) + " and not " +
                                 kit::joined(expected));
    if (!factory.make({})->keys().empty())
        return Verdict::brokenAs("keys() of an empty source is not empty");
    if (!kit::changes(factory))
        return Verdict::kept();
    kit::put(factory, *source, "new", "value");
    expected.insert("new");
    if (source->keys() != expected)
        return Verdict::brokenAs("keys() does not list a key that was added");
    return Verdict::kept();
}

/// 3. get of a key that the source does not have throws std::out_of_range.
inline Verdict getOfAMissingKeyThrows(const SourceFactory& factory) {
    const auto source = factory.make(kit::someOptions());
    try {
        source->get("missing");
    } catch (const std::out_of_range&) {
        return Verdict::kept();
    } catch (...) {
        return Verdict::brokenAs(
            "get of a missing key throws something else than std::out_of_range");
    }
    return Verdict::brokenAs("get of a missing key answers with a value");
}

/// 4. Queries change nothing and do not call the watcher.
inline Verdict questionsChangeNothing(const SourceFactory& factory) {
    const auto source = factory.make(kit::someOptions());
    bool wasTold = false;
    source->setWatcher([&wasTold](const std::string&) { wasTold = true; });
    const std::set<std::string> before = source->keys();
    source->has("missing");
    try {
        source->get("missing");
    } catch (...) { // another rule
    }
    source->has("a");
    source->get("a");
    const std::set<std::string> after = source->keys();
    source->setWatcher({});
    if (wasTold)
        return Verdict::brokenAs("a question, or setWatcher itself, called the watcher");
    if (before != after || source->has("missing"))
        return Verdict::brokenAs("a question added or removed a key");
    return Verdict::kept();
}

/// 5. set stores the value and calls the watcher once the value can be read. A source that is not
///    writable throws, keeps its value and does not call the watcher.
inline Verdict setStoresAndTellsOrRefuses(const SourceFactory& factory) {
    const auto source = factory.make(kit::someOptions());
    kit::Told told;
    source->setWatcher(told.watcher(*source));
    if (!factory.writable) {
        try {
            source->set("a", kit::text("two"));
        } catch (const std::exception&) {
            if (kit::read(*source, "a") != "one")
                return Verdict::brokenAs("a set that was refused changed the value");
            return told.keys.empty()
                       ? Verdict::kept()
                       : Verdict::brokenAs("a set that was refused called the watcher");
        }
        return Verdict::brokenAs("set of a source that is not writable does not throw");
    }
    for (const char* const key : {"a", "new"}) {
        source->set(key, kit::text("two"));
        if (kit::read(*source, key) != "two")
            return Verdict::brokenAs("the value of \"" + std::string(key) +
                                     "\" cannot be read after set");
        const std::string missing = told.missing(key, "two");
        if (!missing.empty())
            return Verdict::brokenAs("after set, " + missing);
    }
    return Verdict::kept();
}

/// 6. A change from outside calls the watcher once the change can be read: a changed value, a new
///    key, or a removed key.
inline Verdict changesAreTold(const SourceFactory& factory) {
    if (!factory.change)
        return Verdict::notApplicable();
    const auto source = factory.make(kit::someOptions());
    kit::Told told;
    source->setWatcher(told.watcher(*source));
    for (const char* const key : {"a", "new"}) {
        factory.change(*source, key, kit::text("two"));
        const std::string missing = told.missing(key, "two");
        if (!missing.empty())
            return Verdict::brokenAs("after a change, " + missing);
    }
    factory.change(*source, "net", std::nullopt);
    if (source->has("net"))
        return Verdict::brokenAs("a key that was removed is still there");
    const std::string missing = told.missing("net", "");
    return missing.empty() ? Verdict::kept() : Verdict::brokenAs("after a removal, " + missing);
}

/// 7. The watcher is called with no lock held: it may read the source, and it may wait for another
///    thread that reads the source.
inline Verdict theWatcherRunsWithoutLocks(const SourceFactory& factory) {
    if (!kit::changes(factory))
        return Verdict::notApplicable();
    const std::shared_ptr<kit::ConfigurationSource> source = factory.make(kit::someOptions());
    const auto change = [factory, source] {
        try {
            kit::put(factory, *source, "a", "two");
        } catch (...) { // another rule
        }
    };
    auto* const raw = source.get(); // the watcher must not own the source that owns it
    source->setWatcher([raw](const std::string& key) { kit::read(*raw, key); });
    if (!endsWithin(deadlockTime, change))
        return Verdict::brokenAs("a watcher that reads the source waits for ever");
    source->setWatcher(
        [source = std::weak_ptr<kit::ConfigurationSource>(source)](const std::string& key) {
            const auto alive = source.lock();
            std::async(std::launch::async, [&] { kit::read(*alive, key); }).get();
        });
    if (!endsWithin(deadlockTime, change))
        return Verdict::brokenAs(
            "a watcher that waits for a thread that reads the source waits for ever");
    source->setWatcher({});
    return Verdict::kept();
}

/// 8. setWatcher replaces the watcher: the old one is not called any more.
inline Verdict setWatcherReplaces(const SourceFactory& factory) {
    if (!kit::changes(factory))
        return Verdict::notApplicable();
    const auto source = factory.make(kit::someOptions());
    int before = 0;
    int now = 0;
    source->setWatcher([&before](const std::string&) { ++before; });
    source->setWatcher([&now](const std::string&) { ++now; });
    kit::put(factory, *source, "a", "two");
    source->setWatcher({});
    if (before > 0)
        return Verdict::brokenAs("a watcher that was replaced was called");
    return now > 0 ? Verdict::kept() : Verdict::brokenAs("the second watcher was not called");
}

/// 9. An empty watcher stops the notifications at once.
inline Verdict anEmptyWatcherSilences(const SourceFactory& factory) {
    if (!kit::changes(factory))
        return Verdict::notApplicable();
    const auto source = factory.make(kit::someOptions());
    int calls = 0;
    source->setWatcher([&calls](const std::string&) { ++calls; });
    source->setWatcher({});
    try {
        kit::put(factory, *source, "a", "two");
    } catch (...) {
        return Verdict::brokenAs("a change throws when the watcher is empty");
    }
    if (calls > 0)
        return Verdict::brokenAs("the watcher was called after an empty one had taken its place");
    return kit::read(*source, "a") == "two"
               ? Verdict::kept()
               : Verdict::brokenAs("a change is not stored when the watcher is empty");
}

/// 10. A watcher is destroyed when it is replaced, and with the source.
inline Verdict watchersAreDestroyed(const SourceFactory& factory) {
    auto source = factory.make(kit::someOptions());
    const auto hold = [&source] {
        auto held = std::make_shared<int>();
        const std::weak_ptr<int> observed = held;
        source->setWatcher([held = std::move(held)](const std::string&) {});
        return observed;
    };
    const std::weak_ptr<int> first = hold();
    const std::weak_ptr<int> second = hold();
    if (!first.expired())
        return Verdict::brokenAs("a watcher that was replaced is not destroyed");
    source.reset();
    return second.expired() ? Verdict::kept()
                            : Verdict::brokenAs("the watcher is not destroyed with the source");
}

/// 11. A watcher may replace itself while it runs.
inline Verdict aWatcherMayReplaceItself(const SourceFactory& factory) {
    if (!kit::changes(factory))
        return Verdict::notApplicable();
    const std::shared_ptr<kit::ConfigurationSource> source = factory.make(kit::someOptions());
    auto* const raw = source.get();
    const auto calls = std::make_shared<std::atomic<int>>(0);
    source->setWatcher([raw, calls](const std::string&) {
        const auto kept = calls; // the next line destroys the captures
        raw->setWatcher({});
        ++*kept;
    });
    const bool ended = endsWithin(deadlockTime, [factory, source] {
        try {
            kit::put(factory, *source, "a", "two");
            kit::put(factory, *source, "a", "three");
        } catch (...) { // another rule
        }
    });
    if (!ended)
        return Verdict::brokenAs("a watcher that calls setWatcher waits for ever");
    return *calls == 1 ? Verdict::kept()
                       : Verdict::brokenAs("a watcher that silenced the source was called again");
}

/// 12. An exception of the watcher propagates to the caller that made the change; the value is
///     stored, and the next change is reported.
inline Verdict exceptionsOfTheWatcherPass(const SourceFactory& factory) {
    if (!kit::changes(factory))
        return Verdict::notApplicable();
    struct Thrown {};
    const auto source = factory.make(kit::someOptions());
    bool throws = true;
    int calls = 0;
    source->setWatcher([&](const std::string&) {
        ++calls;
        if (throws)
            throw Thrown();
    });
    bool passed = false;
    try {
        kit::put(factory, *source, "a", "two");
    } catch (const Thrown&) {
        passed = true;
    } catch (...) {
        return Verdict::brokenAs("another exception passes than the watcher threw");
    }
    throws = false;
    if (!passed)
        return Verdict::brokenAs("what the watcher throws does not pass");
    if (kit::read(*source, "a") != "two")
        return Verdict::brokenAs("the value is not stored when the watcher throws");
    const int before = calls;
    kit::put(factory, *source, "a", "three");
    source->setWatcher({});
    return calls > before && kit::read(*source, "a") == "three"
               ? Verdict::kept()
               : Verdict::brokenAs("the source does not work after its watcher threw");
}

namespace kit {

/// Changes an option repeatedly, on its own thread, until this object is destroyed.
class Changing {
public:
    template <typename Change>
    explicit Changing(Change change)
        : thread([this, change] {
              for (int round = 0; !isOver; ++round)
                  change(round);
          }) {}
    ~Changing() {
        isOver = true;
        thread.join();
    }
    Changing(const Changing&) = delete;
    Changing& operator=(const Changing&) = delete;

private:
    std::atomic<bool> isOver{false};
    std::thread thread;
};

inline constexpr const char* lookupFailed =
    "a lookup failed, although another source had the key (get must not throw when the key is "
    "removed after has returned true): ";

/// @return the error in one lookup of a configuration whose values are long texts of one repeated
///         letter; empty if there is none
inline std::string wrongIn(configuration::Configuration& configuration) {
    try {
        const OptionValue value = configuration.get("a").get();
        const auto* const string = boost::get<std::string>(&value);
        if (string == nullptr || string->size() != 100 ||
            string->find_first_not_of(string->front()) != std::string::npos)
            return "a lookup got a value that nobody had written";
    } catch (const std::exception& error) {
        return lookupFailed + std::string(error.what());
    }
    return "";
}

} // namespace kit

/// 13. While an option is changed, added and removed, concurrent lookups through a configuration
///     get a whole value, and no error if another source has the key.
inline Verdict concurrentLookupsTearNothing(const SourceFactory& factory) {
    if (!kit::changes(factory))
        return Verdict::notApplicable();
    const auto valueOf = [](int round) {
        return std::string(100, static_cast<char>('a' + round % 26));
    };
    const auto configuration = std::make_shared<configuration::ConfigurationImpl>();
    const std::shared_ptr<kit::ConfigurationSource> source =
        factory.make({{"a", kit::text(valueOf(0))}});
    configuration->addInMemorySource("behind", "", 2, true, {{"a", kit::text(valueOf(0))}}).get();
    try {
        configuration->addSource("tested", "", 1, !factory.writable, source).get();
    } catch (const std::exception& error) {
        return Verdict::brokenAs(kit::lookupFailed + std::string(error.what()));
    }
    const kit::Changing changing([&](int round) {
        if (!factory.change)
            configuration->set("a", kit::text(valueOf(round)), "tested").get();
        else if (round % 2 == 0)
            factory.change(*source, "a", std::nullopt);
        else
            factory.change(*source, "a", kit::text(valueOf(round)));
    });
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(500);
    while (std::chrono::steady_clock::now() < end) {
        for (int i = 0; i < 100; ++i) {
            const std::string wrong = kit::wrongIn(*configuration);
            if (!wrong.empty())
                return Verdict::brokenAs(wrong);
        }
    }
    return Verdict::kept();
}

/// 14. A source that was removed from a configuration, or outlives it, can still be changed.
inline Verdict theSourceOutlivesItsConfiguration(const SourceFactory& factory) {
    if (!kit::changes(factory))
        return Verdict::notApplicable();
    for (const bool isRemoved : {false, true}) {
        const auto source = factory.make(kit::someOptions());
        auto configuration = std::make_shared<configuration::ConfigurationImpl>();
        configuration->addSource("tested", "", 1, !factory.writable, source).get();
        if (isRemoved)
            configuration->removeSource("tested").get();
        configuration.reset();
        try {
            kit::put(factory, *source, "a", "two");
        } catch (...) {
            return Verdict::brokenAs("a change throws after the end of the configuration");
        }
    }
    return Verdict::kept();
}

} // namespace connector::testing
