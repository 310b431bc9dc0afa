/// Lookups in a source over etcd.
#include "../lookup/Floor.hpp"
#include "../lookup/Hits.hpp"
#include "Server.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <memory>
#include <utility>
#include <vector>

namespace {

using namespace bench::lookup;
using bench::etcd::Server;
using connector::configuration::ConfigurationImpl;
using connector::etcd::Change;
using connector::etcd::EtcdSource;

/// A configuration of an EtcdSource alone, whose server writes every table once.
class Followed {
public:
    explicit Followed(const Tables& tables)
        : source(std::make_shared<EtcdSource>(server.options("lookup/"))) {
        configuration->removeSource("override").get();
        configuration->removeSource("default").get();
        std::int64_t revision = 0;
        std::vector<Change> changes;
        const std::vector<Layer> layers = tables.make();
        for (const auto& [key, value] : layers.front()) {
            changes.push_back({key, value, {}});
            if (changes.size() == 100)
                revision = source->apply(std::exchange(changes, {})).get();
        }
        source->waitFor(revision, std::chrono::seconds(60));
        configuration->addSource("fleet", "", 60, true, source).get();
    }

    template <typename T>
    T get(const std::string& key) {
        return boost::get<T>(configuration->get(key).get());
    }

private:
    Server server;
    const std::shared_ptr<EtcdSource> source;
    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
};

[[maybe_unused]] const bool registered = [] {
    const LookupCase lookupCase = {{10'000, 1, false, 0}, true};
    bench::add("etcd lookup", lookupCase.description(), "ours",
               [=](benchmark::State& state) { runHits<Followed, int>(state, lookupCase); });
    bench::add("etcd lookup", lookupCase.description(), "floor",
               [=](benchmark::State& state) { runHits<Floor, int>(state, lookupCase); });
    return true;
}();

} // namespace
