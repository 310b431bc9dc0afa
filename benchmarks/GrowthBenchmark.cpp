/// How the cost of every operation of a configuration grows with its sources, their keys, the streams
/// of other keys, and the watchers of the key itself. Each number is doubled four times while the
/// others stay; docs/complexity.md shows what comes of it.
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
    int sources = 2;   ///< beside the one that can be written
    int keys = 1000;   ///< of each source
    int streams = 100; ///< each of another key
    int watchers = 4;  ///< of the key that the operations are about

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

/// @return the keys of one source, which are its own but for the one that all operations are about
Table tableOf(int source, int keys) {
    Table table;
    for (int i = 0; i < keys; ++i)
        table.emplace(bench::keyNumber(i) + "." + std::to_string(source), i);
    return table;
}

/// What all operations are about.
const std::string key = "net.port";

/// @return what is added and removed: keys of its own, and the one
Table addedTable(int keys) {
    Table table = tableOf(-1, keys - 1);
    table[key] = 1;
    return table;
}

/// A file with the same keys; gone with the object.
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

/// A configuration of some size. The key stands in the last of its sources, behind which only the one
/// comes that can be written.
struct World {
    explicit World(const Size& size) : keys(size.keys), file(size.keys) {
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
        streamsOfKey.push_back(streamsSoFar); // ids are given in order, and never again
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
    std::deque<std::uint64_t> streamsOfKey; // ids, the oldest first
    Table table;
    std::shared_ptr<InMemorySource> source;
};

using Step = std::function<void(World&)>;

struct Operation {
    const char* name;
    Step prepare; ///< untimed, may be empty
    Step run;
    Step undo; ///< untimed, may be empty
};

const Operation operations[] = {
    {"get", {}, [](World& world) { world.configuration->get(key).get(); }, {}},
    {"getOption", {}, [](World& world) { world.configuration->getOption(key).get(); }, {}},
    {"has", {}, [](World& world) { world.configuration->has(key).get(); }, {}},
    {"explain", {}, [](World& world) { world.configuration->explain(key); }, {}},
    {"keys", {}, [](World& world) { world.configuration->keys().get(); }, {}},
    {"set", {}, [](World& world) { world.configuration->set(key, 1).get(); }, {}},
    {"set in a named source",
     {},
     [](World& world) { world.configuration->set(key, 1, "default").get(); },
     {}},
    {"watchOption",
     {},
     [](World& world) { world.watchKey(); },
     [](World& world) { world.removeNewestStream(); }},
    {"removeStream of the newest",
     [](World& world) { world.watchKey(); },
     [](World& world) { world.removeNewestStream(); },
     {}},
    {"removeStream of the oldest",
     [](World& world) { world.watchKey(); },
     [](World& world) { world.removeOldestStream(); },
     {}},
    {"addSource", [](World& world) { world.prepareSource(); },
     [](World& world) { world.configuration->addSource("added", "", 5, true, world.source).get(); },
     [](World& world) { world.removeAdded(); }},
    {"addInMemorySource", [](World& world) { world.prepareTable(); },
     [](World& world) { world.addTable(); }, [](World& world) { world.removeAdded(); }},
    {"addPropertyFileSource",
     {},
     [](World& world) {
         world.configuration->addPropertyFileSource("added", "", 5, true, world.file.path()).get();
     },
     [](World& world) { world.removeAdded(); }},
    {"removeSource",
     [](World& world) {
         world.prepareTable();
         world.addTable();
     },
     [](World& world) { world.removeAdded(); },
     {}},
    {"addEnvironmentSource",
     {},
     [](World& world) { world.configuration->addEnvironmentSource("added", "", 5).get(); },
     {}},
    {"getPtr", {}, [](World& world) { world.configuration->getPtr(); }, {}},
};

struct Dimension {
    const char* name;
    int Size::*number;
    int first;  ///< doubled four times
    Size other; ///< numbers, which stay
};

/// Or else the many keys of a source would hide what its one watched key costs, and its place.
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

/// Worlds are made once, because every operation leaves them as they were.
World& worldOf(const Size& size) {
    static std::map<Size, World> worlds;
    return worlds.try_emplace(size, size).first->second;
}

void measure(benchmark::State& state, const Operation& operation, const Size& size) {
    World& world = worldOf(size);
    for (auto _ : state) {
        if (operation.prepare)
            operation.prepare(world);
        const auto start = std::chrono::steady_clock::now();
        operation.run(world);
        const auto end = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
        if (operation.undo)
            operation.undo(world);
    }
    if (!world.configuration->has(key).get() || world.configuration->has("none").get())
        state.SkipWithError("the world is another one");
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
