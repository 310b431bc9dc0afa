/// What it costs to ask for an option, beside the least that it can cost, beside the rules word for
/// word, and beside POCO's configurations.
#include "Harness.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <Poco/Util/LayeredConfiguration.h>
#include <Poco/Util/MapConfiguration.h>
#include <benchmark/benchmark.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using connector::configuration::Configuration;
using connector::configuration::ConfigurationImpl;
using connector::configuration::ConfigurationSource;
using connector::configuration::OptionValue;

using Table = std::unordered_map<std::string, OptionValue>;

/// What is looked up: the same question to every contestant.
struct Question {
    int keys;           ///< in each layer
    int layers;         ///< consulted at most
    bool inFirst;       ///< the first layer has it, or only the last
    bool grouped;       ///< the layers have a group
    std::size_t length; ///< of the text that is found; 0: an int is found

    std::string prefix() const { return grouped ? "application." : ""; }
    std::string key() const { return prefix() + bench::keyNumber(keys / 2); }
    OptionValue value() const {
        if (length == 0)
            return 8080;
        return bench::textNumber(7, length);
    }
    /// The key that is asked for stands in the first layer, or only in the last; every other key of a
    /// layer is its own.
    Table layer(int number) const {
        Table table;
        for (int i = 0; i < keys; ++i)
            table.emplace(bench::keyNumber(i) + (i == keys / 2 && has(number) ? "" : "'"), value());
        return table;
    }
    bool has(int number) const { return number == layers - 1 || (inFirst && number == 0); }
};

/// Only finds, the lock, the copy, and the allocations of a future.
class Floor {
public:
    explicit Floor(const Question& question) : prefixLength(question.prefix().size()) {
        for (int i = 0; i < question.layers; ++i)
            layers.push_back(question.layer(i));
    }

    OptionValue get(const std::string& key) {
        std::shared_ptr<State> state;
        {
            const std::lock_guard<std::recursive_mutex> lock(mutex);
            for (const Table& layer : layers) {
                const auto entry =
                    prefixLength == 0 ? layer.find(key) : layer.find(key.substr(prefixLength));
                if (entry != layer.end()) {
                    state = std::make_shared<State>();
                    state->cell = std::make_unique<OptionValue>(entry->second);
                    break;
                }
            }
        }
        const std::lock_guard<std::mutex> lock(state->mutex);
        return std::move(*state->cell);
    }

private:
    struct State {
        std::mutex mutex;
        std::condition_variable condition;
        std::unique_ptr<OptionValue> cell;
    };
    std::recursive_mutex mutex;
    std::vector<Table> layers;
    const std::size_t prefixLength;
};

/// The rules word for word: has walks the layers, get walks them again, and each question to a layer
/// costs a copy of the key without its group.
class Literal {
public:
    explicit Literal(const Question& question) : prefix(question.prefix()) {
        for (int i = 0; i < question.layers; ++i)
            layers.push_back(question.layer(i));
    }

    connector::Future<OptionValue> get(const std::string& key) {
        std::unique_lock<std::recursive_mutex> lock(mutex);
        if (find(key) == nullptr)
            return failed("No option with the specified key was found: " + key);
        const Table* const supplier = find(key);
        const std::string local = key.substr(prefix.size());
        auto state = std::make_shared<connector::detail::SharedFutureState<OptionValue>>();
        state->setValue(supplier->at(local));
        return connector::Future<OptionValue>(std::move(state));
    }

private:
    /// Throws the exception, catches it, and lets it be thrown again.
    static connector::Future<OptionValue> failed(const std::string& text) {
        auto state = std::make_shared<connector::detail::SharedFutureState<OptionValue>>();
        try {
            throw std::runtime_error(text);
        } catch (...) {
            state->setException(std::current_exception());
        }
        return connector::Future<OptionValue>(std::move(state));
    }

    const Table* find(const std::string& key) const {
        for (const Table& layer : layers) {
            if (key.compare(0, prefix.size(), prefix) != 0)
                continue;
            const std::string local = key.substr(prefix.size());
            if (layer.find(local) != layer.end())
                return &layer;
        }
        return nullptr;
    }

    std::recursive_mutex mutex;
    std::vector<Table> layers;
    const std::string prefix;
};

class Ours {
public:
    explicit Ours(const Question& question) {
        configuration->removeSource("override").get();
        for (int i = 0; i < question.layers; ++i)
            configuration
                ->addInMemorySource("layer" + std::to_string(i), question.prefix(), i, false,
                                    question.layer(i))
                .get();
        configuration->removeSource("default").get();
    }
    connector::Future<OptionValue> get(const std::string& key) { return configuration->get(key); }

private:
    const std::shared_ptr<Configuration> configuration = std::make_shared<ConfigurationImpl>();
};

class Peer {
public:
    explicit Peer(const Question& question) {
        for (int i = 0; i < question.layers; ++i) {
            Poco::AutoPtr<Poco::Util::MapConfiguration> layer(new Poco::Util::MapConfiguration);
            for (const auto& [key, value] : question.layer(i)) {
                if (question.length == 0)
                    layer->setInt(question.prefix() + key, boost::get<int>(value));
                else
                    layer->setString(question.prefix() + key, boost::get<std::string>(value));
            }
            layers->add(layer, i, false);
        }
    }
    int getInt(const std::string& key) const { return layers->getInt(key); }
    std::string getString(const std::string& key) const { return layers->getString(key); }

private:
    Poco::AutoPtr<Poco::Util::LayeredConfiguration> layers{new Poco::Util::LayeredConfiguration};
};

Question questionOf(const benchmark::State& state) {
    return {static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), state.range(2) == 1,
            state.range(3) == 1, static_cast<std::size_t>(state.range(4))};
}

void questions(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"keys", "layers", "first", "group", "bytes"});
    for (const int keys : {10, 1000, 100000})
        for (const int layers : {1, 2, 6})
            benchmark->Args({keys, layers, 0, 0, 12});
    for (const int grouped : {0, 1})
        for (const int length : {0, 12, 40})
            benchmark->Args({1000, 2, 1, grouped, length});
    benchmark->Args({1000, 2, 0, 1, 12});
}

template <typename Contestant>
void BM_Lookup_Hit(benchmark::State& state) {
    const Question question = questionOf(state);
    Contestant contestant(question);
    const std::string key = question.key();
    const OptionValue expected = question.value();
    for (auto _ : state) {
        OptionValue found;
        if constexpr (std::is_same_v<Contestant, Floor>)
            found = contestant.get(key);
        else
            found = contestant.get(key).get();
        benchmark::DoNotOptimize(found);
        if (found.which() != expected.which())
            state.SkipWithError("another value was found");
    }
}
BENCHMARK_TEMPLATE(BM_Lookup_Hit, Floor)->Apply(questions);
BENCHMARK_TEMPLATE(BM_Lookup_Hit, Literal)->Apply(questions);
BENCHMARK_TEMPLATE(BM_Lookup_Hit, Ours)->Apply(questions);

void BM_Lookup_Hit_Poco(benchmark::State& state) {
    const Question question = questionOf(state);
    const Peer peer(question);
    const std::string key = question.key();
    for (auto _ : state) {
        if (question.length == 0)
            benchmark::DoNotOptimize(peer.getInt(key));
        else
            benchmark::DoNotOptimize(peer.getString(key));
    }
}
BENCHMARK(BM_Lookup_Hit_Poco)->Apply(questions);

template <typename Contestant>
void BM_Lookup_Miss(benchmark::State& state) {
    const Question question{1000, 2, true, false, 12};
    Contestant contestant(question);
    for (auto _ : state) {
        try {
            if constexpr (std::is_same_v<Contestant, Peer>)
                benchmark::DoNotOptimize(contestant.getString("section.option.none"));
            else
                benchmark::DoNotOptimize(contestant.get("section.option.none").get());
            state.SkipWithError("something was found");
        } catch (const std::exception&) {
        }
    }
}
BENCHMARK_TEMPLATE(BM_Lookup_Miss, Literal);
BENCHMARK_TEMPLATE(BM_Lookup_Miss, Ours);
BENCHMARK_TEMPLATE(BM_Lookup_Miss, Peer);

} // namespace
