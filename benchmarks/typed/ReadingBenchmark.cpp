/// What typed reads cost beside the same by hand.
#include "../Harness.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/OptionReading.hpp>
#include <connector/configuration/typed/OptionSchema.hpp>

#include <charconv>
#include <memory>
#include <string>
#include <unordered_map>

namespace {

using namespace connector::configuration;

std::shared_ptr<ConfigurationImpl> withOption(OptionValue value) {
    auto configuration = std::make_shared<ConfigurationImpl>();
    configuration->set("net.port", std::move(value)).get();
    return configuration;
}

int numberOf(const std::string& text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// @param read  takes the configuration and answers the port
template <typename Read>
void readPort(benchmark::State& state, const OptionValue& value, Read read) {
    const auto configuration = withOption(value);
    const std::string key = "net.port";
    for (auto _ : state) {
        if (read(*configuration, key) != 8080)
            state.SkipWithError("wrong value");
    }
}

void addReading() {
    bench::add("typed", "getAs, int", "ours", [](benchmark::State& state) {
        readPort(state, 8080, [](Configuration& configuration, const std::string& key) {
            return getAs<int>(configuration, key);
        });
    });
    bench::add("typed", "getAs, int", "by hand", [](benchmark::State& state) {
        readPort(state, 8080, [](Configuration& configuration, const std::string& key) {
            return boost::get<int>(configuration.get(key).get());
        });
    });
    bench::add("typed", "getAs, text", "ours", [](benchmark::State& state) {
        readPort(state, std::string("8080"),
                 [](Configuration& configuration, const std::string& key) {
                     return getAs<int>(configuration, key);
                 });
    });
    bench::add("typed", "getAs, text", "by hand", [](benchmark::State& state) {
        readPort(state, std::string("8080"),
                 [](Configuration& configuration, const std::string& key) {
                     return numberOf(boost::get<std::string>(configuration.get(key).get()));
                 });
    });
}

constexpr int declaredOptions = 20;

/// Half of them numbers and half of them text.
struct Twenty {
    int a = 0, b = 0, c = 0, d = 0, e = 0, f = 0, g = 0, h = 0, i = 0, j = 0;
    std::string k, l, m, n, o, p, q, r, s, t;
};

OptionSchema<Twenty> twentySchema() {
    OptionSchema<Twenty> schema("section.option");
    int Twenty::*const numbers[] = {&Twenty::a, &Twenty::b, &Twenty::c, &Twenty::d, &Twenty::e,
                                    &Twenty::f, &Twenty::g, &Twenty::h, &Twenty::i, &Twenty::j};
    std::string Twenty::*const texts[] = {&Twenty::k, &Twenty::l, &Twenty::m, &Twenty::n,
                                          &Twenty::o, &Twenty::p, &Twenty::q, &Twenty::r,
                                          &Twenty::s, &Twenty::t};
    for (int number = 0; number < declaredOptions / 2; ++number) {
        schema.option(std::to_string(number), numbers[number], "", inRange(0, 1000000));
        schema.option(std::to_string(declaredOptions / 2 + number), texts[number], "");
    }
    return schema;
}

std::shared_ptr<ConfigurationImpl> withOptions(int count) {
    std::unordered_map<std::string, OptionValue> values;
    for (int number = 0; number < count; ++number)
        values.emplace(bench::keyNumber(number), std::to_string(number));
    auto configuration = std::make_shared<ConfigurationImpl>();
    configuration->addInMemorySource("file", "", 100, true, std::move(values)).get();
    return configuration;
}

void readBySchema(benchmark::State& state, int count) {
    const auto configuration = withOptions(count);
    const auto schema = twentySchema();
    for (auto _ : state) {
        const Twenty settings = schema.read(*configuration);
        if (settings.j != 9 || settings.t != "19")
            state.SkipWithError("wrong value");
    }
}

void readByHand(benchmark::State& state, int count) {
    const auto configuration = withOptions(count);
    std::string keys[declaredOptions];
    for (int number = 0; number < declaredOptions; ++number)
        keys[number] = bench::keyNumber(number);
    for (auto _ : state) {
        int numbers[declaredOptions / 2];
        std::string texts[declaredOptions / 2];
        for (int number = 0; number < declaredOptions / 2; ++number) {
            const Option option = configuration->getOption(keys[number]).get();
            numbers[number] = numberOf(boost::get<std::string>(option.value));
            if (numbers[number] < 0 || numbers[number] > 1000000)
                state.SkipWithError("out of range");
        }
        for (int number = 0; number < declaredOptions / 2; ++number) {
            Option option = configuration->getOption(keys[declaredOptions / 2 + number]).get();
            texts[number] = std::move(boost::get<std::string>(option.value));
        }
        if (numbers[9] != 9 || texts[9] != "19")
            state.SkipWithError("wrong value");
        benchmark::DoNotOptimize(numbers);
    }
}

[[maybe_unused]] const bool registered = [] {
    addReading();
    for (const int count : {20, 10000}) {
        const std::string description = "schema, 20 of " + std::to_string(count) + " options";
        bench::add("typed", description, "ours",
                   [=](benchmark::State& state) { readBySchema(state, count); });
        bench::add("typed", description, "by hand",
                   [=](benchmark::State& state) { readByHand(state, count); });
    }
    return true;
}();

} // namespace
