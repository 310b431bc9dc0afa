/// Lookups in tables that can be replaced, alone and while another thread
/// replaces them.
#include "Floor.hpp"
#include "Hits.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/sources/TableSource.hpp>

#include <boost/variant/get.hpp>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace bench::lookup;
using connector::configuration::ConfigurationImpl;
using connector::sources::TableSource;

/// A configuration of TableSources alone.
class Replaceable {
public:
    explicit Replaceable(const Tables& tables) {
        configuration->removeSource("override").get();
        configuration->removeSource("default").get();
        for (Layer& layer : tables.make()) {
            const int order = static_cast<int>(sources.size());
            sources.push_back(std::make_shared<TableSource>(std::move(layer)));
            configuration
                ->addSource("layer" + std::to_string(order), tables.group(), order, true,
                            sources.back())
                .get();
        }
    }

    template <typename T>
    T get(const std::string& key) {
        return boost::get<T>(configuration->get(key).get());
    }

protected:
    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    std::vector<std::shared_ptr<TableSource>> sources;
};

/// The same, while the last table is replaced 1,000 times a second, with one key changed.
class Replaced : public Replaceable {
public:
    explicit Replaced(const Tables& tables)
        : Replaceable(tables), replacing([this] {
              for (int round = 0; !isStopping; ++round) {
                  connector::sources::Table table = *sources.back()->table();
                  table["changes"] = round;
                  sources.back()->replace(std::move(table));
                  std::this_thread::sleep_for(std::chrono::milliseconds(1));
              }
          }) {}
    ~Replaced() {
        isStopping = true;
        replacing.join();
    }

private:
    std::atomic<bool> isStopping{false};
    std::thread replacing;
};

/// Lives as long as its measurement: the thread must not disturb the others.
template <typename T>
void runReplaced(benchmark::State& state, const LookupCase& lookupCase) {
    Replaced contestant(lookupCase.tables);
    const std::vector<Expectation<T>> lookups = expectations<T>(lookupCase);
    RandomNumbers random;
    bool isRight = true;
    for (auto _ : state) {
        const Expectation<T>& next = lookups[random.below(lookups.size())];
        isRight &= contestant.template get<T>(next.key) == next.value;
    }
    if (!isRight)
        state.SkipWithError("another value was found");
}

void addCase(const LookupCase& lookupCase) {
    const std::string subject = "table source";
    const auto addRun = [&](const std::string& when, const std::string& contestant, auto run) {
        bench::add(subject, when + lookupCase.description(), contestant,
                   [run, lookupCase](benchmark::State& state) { run(state, lookupCase); });
    };
    addRun("not replaced, ", "ours", runHits<Replaceable, int>);
    addRun("not replaced, ", "floor", runHits<Floor, int>);
    addRun("replaced, ", "ours", runReplaced<int>);
    addRun("replaced, ", "floor", runHits<Floor, int>);
}

[[maybe_unused]] const bool registered = [] {
    for (const bool inFirst : {true, false})
        addCase({{1000, 2, false, 0}, inFirst});
    return true;
}();

} // namespace
