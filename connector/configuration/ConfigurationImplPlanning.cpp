/// Looking at all sources, and at what a change would make of them.
#include <connector/configuration/ConfigurationImpl.hpp>

#include <connector/configuration/planning/detail/Planner.hpp>
#include <connector/configuration/planning/detail/SourceTable.hpp>
#include <connector/configuration/sources/detail/LookupScope.hpp>

#include <utility>

namespace connector::configuration {

std::vector<SourceSnapshot> ConfigurationImpl::snapshot() {
    const Lock lock(mutex);
    detail::LookupScope lookup; // one for all sources, so that their entries are of one moment
    lookup.enter();
    std::vector<SourceSnapshot> snapshots;
    snapshots.reserve(sources.size());
    for (ConfigurationSourceMap& record : sources) {
        snapshots.push_back({record.name, record.group, record.order, record.readOnly, {}});
        for (auto& [key, value] : detail::tableOf(record, lookup))
            snapshots.back().entries[key].value = std::move(value);
    }
    return snapshots;
}

planning::Plan ConfigurationImpl::plan(planning::Change change) {
    const Lock lock(mutex); // for the whole time, because it is what protects the sources
    return detail::planOf(sources, std::move(change));
}

} // namespace connector::configuration
