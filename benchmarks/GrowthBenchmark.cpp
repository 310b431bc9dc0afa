/// How the cost of every operation grows with the number of sources, of keys in each source, of
/// streams of other keys, and of watchers of the key itself. Each number is doubled four times
/// while the others stay the same. docs/complexity.md shows the results.
#include "Harness.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/sources/InMemorySource.hpp>

#include <chrono>
#include <cstdio>
#include <deque>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>

#include <unistd.h>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::InMemorySource;
using connector::configuration::OptionValue;
using connector::reactive_streams::Subscriber;
using connector::reactive_streams::Subscription;
using Table = std::unordered_map<std::string, OptionValue>;

struct Size {
    int sources = 2;   ///< besides the writable one
    int keys = 1000;   ///< of each source
    int streams = 100; ///< each of a different key
    int watchers = 4;  ///< of the key that the operations use

    bool operator<(const Size& other) const {
        return std::tie(sources, keys, streams, watchers) <
               std::tie(other.sources, other.keys, other.streams, other.watchers);
    }
};

class TakesAll : public Subscriber<OptionValue> {
public:
    void onSubscribe(std::weak_ptr<Subscription> subscription) override {
        subscription.lock()->request(std::numeric_limits<std::uint64_t>::max());
    }
    void onComplete() override {}
    void onNext(const OptionValue& value) override { benchmark::DoNotOptimize(value); }
    void onError(std::exception_ptr) override {}
};

/// @return a table with `keys` keys that no other source has
Table tableOf(int source, int keys) {
    Table table;
    for (int i = 0; i < keys; ++i)
        table.emplace(bench::keyNumber(i) + "." + std::to_string(source), i);
    return table;
}

/// The key that all operations use.
const std::string key = "net.port";

/// @return the table that is added and removed: keys that no other source has, and `key`
Table addedTable(int keys) {
    Table table = tableOf(-1, keys - 1);
    table[key] = 1;
    return table;
}

/// A temporary file with the same keys. The destructor removes it.
class PropertyFile {
public:
    explicit PropertyFile(int keys) {
        const int descriptor = ::mkstemp(name.data());
        if (descriptor < 0)
            throw std::runtime_error("no temporary file");
        ::close(descriptor);
        std::ofstream file(name);
        for (const auto& entry : addedTable(keys))
            file << entry.first << "=1\n";
    }
    ~PropertyFile() { std::remove(name.c_str()); }
    PropertyFile(const PropertyFile&) = delete;
    PropertyFile& operator=(const PropertyFile&) = delete;

    std::u16string path() const { return std::u16string(name.begin(), name.end()); }

private:
    std::string name = "/tmp/growth-XXXXXX";
};

/// A configuration of a given size. The last source has `key`; only the writable source is
/// consulted after it.
struct Fixture {
    explicit Fixture(const Size& size) : keys(size.keys), file(size.keys) {
        configuration->removeSource("override").get();
        for (int i = 0; i < size.sources; ++i) {
            Table table = tableOf(i, size.keys);
            if (i == size.sources - 1)
                table[key] = 8080;
            configuration
                ->addInMemorySource("source" + std::to_string(i), "", i, true, std::move(table))
                .get();
        }
        for (int i = 0; i < size.streams; ++i)
            watch("other.key." + std::to_string(i));
        for (int i = 0; i < size.watchers; ++i)
            watchKey();
    }

    void watch(const std::string& watched) {
        configuration->watchOption(watched)->subscribe(std::make_shared<TakesAll>());
        ++streamsSoFar;
    }

    void watchKey() {
        streamsOfKey.push_back(streamsSoFar); // ids are consecutive and never reused
        watch(key);
    }
    void removeNewestStream() {
        configuration->removeStream(streamsOfKey.back());
        streamsOfKey.pop_back();
    }
    void removeOldestStream() {
        configuration->removeStream(streamsOfKey.front());
        streamsOfKey.pop_front();
    }

    void prepareTable() { table = addedTable(keys); }
    void prepareSource() { source = std::make_shared<InMemorySource>(addedTable(keys)); }
    void addTable() {
        configuration->addInMemorySource("added", "", 5, true, std::move(table)).get();
    }
    void removeAdded() { configuration->removeSource("added").get(); }

    const int keys;
    const PropertyFile file;
    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    std::uint64_t streamsSoFar = 0;
    std::deque<std::uint64_t> streamsOfKey; // ids, oldest first
    Table table;
    std::shared_ptr<InMemorySource> source;
};

using Step = std::function<void(Fixture&)>;

struct Operation {
    const char* name;
    Step prepare; ///< not timed, may be empty
    Step run;
    Step undo; ///< not timed, may be empty
};

const Operation operations[] = {
    {"get", {}, [](Fixture& fixture) { fixture.configuration->get(key).get(); }, {}},
    {"getOption", {}, [](Fixture& fixture) { fixture.configuration->getOption(key).get(); }, {}},
    {"has", {}, [](Fixture& fixture) { fixture.configuration->has(key).get(); }, {}},
    {"explain", {}, [](Fixture& fixture) { fixture.configuration->explain(key); }, {}},
    {"keys", {}, [](Fixture& fixture) { fixture.configuration->keys().get(); }, {}},
    {"set", {}, [](Fixture& fixture) { fixture.configuration->set(key, 1).get(); }, {}},
    {"set in a named source",
     {},
     [](Fixture& fixture) { fixture.configuration->set(key, 1, "default").get(); },
     {}},
    {"watchOption",
     {},
     [](Fixture& fixture) { fixture.watchKey(); },
     [](Fixture& fixture) { fixture.removeNewestStream(); }},
    {"removeStream of the newest",
     [](Fixture& fixture) { fixture.watchKey(); },
     [](Fixture& fixture) { fixture.removeNewestStream(); },
     {}},
    {"removeStream of the oldest",
     [](Fixture& fixture) { fixture.watchKey(); },
     [](Fixture& fixture) { fixture.removeOldestStream(); },
     {}},
    {"addSource", [](Fixture& fixture) { fixture.prepareSource(); },
     [](Fixture& fixture) {
         fixture.configuration->addSource("added", "", 5, true, fixture.source).get();
     },
     [](Fixture& fixture) { fixture.removeAdded(); }},
    {"addInMemorySource", [](Fixture& fixture) { fixture.prepareTable(); },
     [](Fixture& fixture) { fixture.addTable(); }, [](Fixture& fixture) { fixture.removeAdded(); }},
    {"addPropertyFileSource",
     {},
     [](Fixture& fixture) {
         fixture.configuration->addPropertyFileSource("added", "", 5, true, fixture.file.path())
             .get();
     },
     [](Fixture& fixture) { fixture.removeAdded(); }},
    {"removeSource",
     [](Fixture& fixture) {
         fixture.prepareTable();
         fixture.addTable();
     },
     [](Fixture& fixture) { fixture.removeAdded(); },
     {}},
    {"addEnvironmentSource",
     {},
     [](Fixture& fixture) { fixture.configuration->addEnvironmentSource("added", "", 5).get(); },
     {}},
    {"getPtr", {}, [](Fixture& fixture) { fixture.configuration->getPtr(); }, {}},
};

struct Dimension {
    const char* name;
    int Size::*number;
    int first;  ///< is doubled four times
    Size other; ///< the numbers that stay the same
};

/// With many keys in each source, the cost of a single watched key would not be visible.
Size withFewKeys() {
    Size size;
    size.keys = 10;
    return size;
}

const Dimension dimensions[] = {
    {"sources", &Size::sources, 8, withFewKeys()},
    {"keys", &Size::keys, 1000, {}},
    {"streams", &Size::streams, 1000, {}},
    {"watchers", &Size::watchers, 64, withFewKeys()},
};

/// Each fixture is created once, because every operation restores it.
Fixture& fixtureOf(const Size& size) {
    static std::map<Size, Fixture> fixtures;
    return fixtures.try_emplace(size, size).first->second;
}

void measure(benchmark::State& state, const Operation& operation, const Size& size) {
    Fixture& fixture = fixtureOf(size);
    for (auto _ : state) {
        if (operation.prepare)
            operation.prepare(fixture);
        const auto start = std::chrono::steady_clock::now();
        operation.run(fixture);
        const auto end = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
        if (operation.undo)
            operation.undo(fixture);
    }
    if (!fixture.configuration->has(key).get() || fixture.configuration->has("none").get())
        state.SkipWithError("the operation did not restore the configuration");
}

const bool added = [] {
    for (const Operation& operation : operations) {
        for (const Dimension& dimension : dimensions) {
            Size size = dimension.other;
            size.*dimension.number = dimension.first;
            for (int doubled = 0; doubled <= 4; ++doubled, size.*dimension.number *= 2)
                bench::add("growth", std::string(operation.name) + ", " + dimension.name,
                           std::to_string(size.*dimension.number),
                           [&operation, size](benchmark::State& state) {
                               measure(state, operation, size);
                           })
                    ->UseManualTime();
        }
    }
    return true;
}();

} // namespace
