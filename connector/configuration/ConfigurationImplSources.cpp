/// Adding and removing sources.
#include <connector/configuration/ConfigurationImpl.hpp>

#include <connector/async/detail/ReservedFuture.hpp>
#include <connector/configuration/detail/CoreDiagnostics.hpp>
#include <connector/configuration/detail/Errors.hpp>
#include <connector/configuration/registry/Precedence.hpp>
#include <connector/configuration/sources/InMemorySource.hpp>
#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <limits>
#include <stdexcept>
#include <typeinfo>
#include <utility>

namespace connector::configuration {

ConfigurationImpl::ConfigurationImpl() {
    constexpr auto last = std::numeric_limits<std::int32_t>::max();
    ConfigurationImpl::addInMemorySource("default", "", last, false, {}).get();
    ConfigurationImpl::addInMemorySource("override", "", 0, false, {}).get();
}

ConfigurationImpl::~ConfigurationImpl() {
    const Lock lock(mutex);
    for (const ConfigurationSourceMap& record : sources)
        record.source->setWatcher({}); // others may share the source: it must not call us any more
}

/// Allocates as much as it can before the record is inserted. From then on only the source, the
/// subscribers and the notification can fail; in that case the record stays.
Future<bool> ConfigurationImpl::addSource(const std::string& name, const std::string& group,
                                          int order, bool readOnly,
                                          std::shared_ptr<ConfigurationSource> source) {
    const ConfigurationSource* const pointee = source.get();
    const std::type_info& type = typeid(*pointee); // throws std::bad_typeid for a null pointer
    detail::logCore("addSource: ", name, ", ", group, ", ", order, ", ", readOnly, ", ",
                    type.name());

    const std::shared_ptr<Configuration> self = weak_from_this().lock();
    Lock lock(mutex);
    if (detail::findByName(sources, name) != sources.end())
        return makeFailedFuture<bool>(
            std::invalid_argument(detail::errors::sourceNameTaken + name));

    connector::detail::ReservedFuture<bool> result;
    const std::string prefix = detail::normalisedGroup(group);
    ConfigurationSource::Watcher watcher = watcherFor(prefix);
    ConfigurationSourceMap record(name, prefix, order, readOnly, source);
    if (sources.size() == sources.capacity())
        sources.reserve(2 * sources.size() + 1);
    sources.insert(detail::insertionPoint(sources, order), std::move(record));

    const detail::OwnTable listed(*source);
    if (keysAreNeeded())
        updateAll(lock, prefix, source->keys());
    source->setWatcher(std::move(watcher));
    if (listed.isExchanged() && keysAreNeeded()) { // before a watcher could report it
        updateAll(lock, prefix, listed.keys());
        updateAll(lock, prefix, source->keys());
    }
    return std::move(result).resolve(true);
}

/// Where nobody follows options and no source can observe the call, the list of a source's keys is
/// not needed. For a large table, building the list takes longer than reading the file did.
bool ConfigurationImpl::keysAreNeeded() const {
    return !streams.isEmpty() || !listeners.empty() || !lookupsAreUnobservable();
}

void ConfigurationImpl::updateAll(Lock& lock, const std::string& group,
                                  const std::set<std::string>& keys) {
    for (const std::string& key : keys)
        updatePublishers(lock, group + key);
}

Future<bool>
ConfigurationImpl::addInMemorySource(const std::string& name, const std::string& group, int order,
                                     bool readOnly,
                                     std::unordered_map<std::string, OptionValue>&& values) {
    return addSource(name, group, order, readOnly,
                     std::make_shared<InMemorySource>(std::move(values)));
}

Future<bool> ConfigurationImpl::addPropertyFileSource(const std::string& name,
                                                      const std::string& group, int order,
                                                      bool readOnly, const std::u16string& path) {
    return addSource(name, group, order, readOnly, std::make_shared<PropertyFileSource>(path));
}

Future<bool> ConfigurationImpl::addEnvironmentSource(const std::string&, const std::string&, int) {
    return makeReadyFuture(false);
}

Future<bool> ConfigurationImpl::removeSource(const std::string& name) {
    detail::logCore("removeSource: ", name);

    const std::shared_ptr<Configuration> self = weak_from_this().lock();
    std::shared_ptr<ConfigurationSource>
        source; // released after the lock: it may be the last owner
    Lock lock(mutex);
    auto record = detail::findByName(sources, name);
    if (record == sources.end())
        return makeReadyFuture(false);
    connector::detail::ReservedFuture<bool> result;
    source = record->source;
    const std::set<std::string> keys = source->keys();
    record = detail::findByName(sources, name);
    if (record == sources.end() || record->source != source)
        return std::move(result).resolve(false); // the source's keys removed it
    sources.erase(record);

    // The keys are announced as the source knows them, without its group, so the watchers of the
    // prefixed keys are not notified of the removal. Removal is defined that way; applications
    // depend on it.
    for (const std::string& key : keys)
        updatePublishers(lock, key);
    return std::move(result).resolve(true);
}

std::shared_ptr<Configuration> ConfigurationImpl::getPtr() {
    return shared_from_this();
}

} // namespace connector::configuration
