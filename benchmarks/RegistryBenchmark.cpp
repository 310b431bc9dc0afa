/// The cost of listing all keys, and of adding a source none of whose keys is watched.
#include "Harness.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/sources/InMemorySource.hpp>

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::ConfigurationSource;
using connector::configuration::InMemorySource;
using connector::configuration::OptionValue;
using Table = std::unordered_map<std::string, OptionValue>;

Table tableOf(int keys, const std::string& suffix) {
    Table table;
    for (int i = 0; i < keys; ++i)
        table.emplace(bench::keyNumber(i) + suffix, i);
    return table;
}

/// Two sources with a quarter of their keys in common, like a source of overrides and its base.
std::vector<std::pair<std::string, Table>> twoTables(int keys, const std::string& group) {
    Table second = tableOf(keys, "'");
    for (auto& [key, value] : tableOf(keys / 4, ""))
        second.emplace(key, value);
    return {{group, tableOf(keys, "")}, {group, std::move(second)}};
}

/// The documented behaviour step by step: a set of the keys of each source, merged into one set.
std::set<std::string> listLiterally(const std::vector<std::pair<std::string, Table>>& tables) {
    std::set<std::string> all;
    for (const auto& [group, table] : tables) {
        std::set<std::string> keys;
        for (const auto& entry : table)
            keys.insert(entry.first);
        for (const std::string& key : keys)
            all.insert(group + key);
    }
    return all;
}

std::shared_ptr<ConfigurationImpl>
configurationOf(const std::vector<std::pair<std::string, Table>>& tables) {
    auto configuration = std::make_shared<ConfigurationImpl>();
    for (const auto& [group, table] : tables) {
        Table copy = table;
        configuration
            ->addInMemorySource("source" + std::to_string(configuration->keys().get().size()),
                                group, 5, true, std::move(copy))
            .get();
    }
    return configuration;
}

/// Times `make`. Destroying its result is not timed.
template <typename Make>
auto timeWithoutTeardown(benchmark::State& state, Make make) {
    decltype(make()) made{};
    for (auto _ : state) {
        state.PauseTiming();
        made = {};
        state.ResumeTiming();
        made = make();
    }
    return made;
}

void addKeys(int keys, const std::string& group) {
    const std::string description = "two sources of " + std::to_string(keys) + " keys" +
                                    (group.empty() ? "" : ", with a group");
    const auto tables =
        std::make_shared<std::vector<std::pair<std::string, Table>>>(twoTables(keys, group));
    bench::add("keys", description, "ours", [tables](benchmark::State& state) {
        const auto configuration = configurationOf(*tables);
        if (timeWithoutTeardown(state, [&] { return configuration->keys().get(); }) !=
            listLiterally(*tables))
            state.SkipWithError("the keys are not those of the literal way");
    });
    bench::add("keys", description, "literal", [tables](benchmark::State& state) {
        std::mutex mutex;
        timeWithoutTeardown(state, [&] {
            const std::lock_guard<std::mutex> lock(mutex);
            return listLiterally(*tables);
        });
    });
}

/// @param streams  of other keys
void addAddingASource(int keys, int streams) {
    const std::string description =
        std::to_string(keys) + (streams == 0 ? " keys, no streams" : " keys, unwatched");
    auto* const ours =
        bench::add("add source", description, "ours", [keys, streams](benchmark::State& state) {
            const auto source = std::make_shared<InMemorySource>(tableOf(keys, ""));
            const auto configuration = std::make_shared<ConfigurationImpl>();
            for (int i = 0; i < streams; ++i)
                configuration->watchOption("other.key." + std::to_string(i));
            for (auto _ : state) {
                configuration->addSource("added", "", 5, true, source).get();
                state.PauseTiming();
                if (!configuration->has(bench::keyNumber(keys - 1)).get())
                    state.SkipWithError("the source was not added");
                configuration->removeSource("added").get();
                state.ResumeTiming();
            }
        });
    if (streams == 0)
        ours->Iterations(10); // the removal, which is not measured, takes much longer
    bench::add("add source", description, "keys()", [keys](benchmark::State& state) {
        const std::shared_ptr<ConfigurationSource> source =
            std::make_shared<InMemorySource>(tableOf(keys, ""));
        for (auto _ : state) {
            if (source->keys().size() != static_cast<std::size_t>(keys))
                state.SkipWithError("keys are missing");
        }
    });
}

const bool added = [] {
    for (const int keys : {1000, 100000}) {
        addKeys(keys, "");
        addKeys(keys, "group.");
        addAddingASource(keys, 100);
        addAddingASource(keys, 0);
    }
    return true;
}();

} // namespace
