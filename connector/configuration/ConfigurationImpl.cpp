/// The configuration object and its registry of sources.
#include <connector/configuration/ConfigurationImpl.hpp>

#include <connector/configuration/detail/CoreDiagnostics.hpp>
#include <connector/configuration/detail/Errors.hpp>
#include <connector/configuration/sources/InMemorySource.hpp>
#include <connector/configuration/sources/PropertyFileSource.hpp>
#include <connector/configuration/sources/detail/OwnTable.hpp>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <typeinfo>
#include <utility>

namespace connector::configuration {

namespace {

/// @return the group as a prefix that can stand in front of a key
std::string normalised(const std::string& group) {
    return group.empty() || group.back() == '.' ? group : group + '.';
}

} // namespace

ConfigurationImpl::ConfigurationSourceMap::ConfigurationSourceMap(
    const std::string& newName, const std::string& newGroup, int newOrder, bool newReadOnly,
    std::shared_ptr<ConfigurationSource> newSource)
    : name(newName), group(newGroup), order(newOrder), readOnly(newReadOnly),
      source(std::move(newSource)), table(detail::OwnTable::of(*source)) {
}

ConfigurationImpl::ConfigurationImpl() {
    ConfigurationImpl::addInMemorySource("default", "", std::numeric_limits<std::int32_t>::max(),
                                         false, {});
    ConfigurationImpl::addInMemorySource("override", "", 0, false, {});
}

ConfigurationImpl::~ConfigurationImpl() {
    const Lock lock(mutex);
    for (const ConfigurationSourceMap& record : sources)
        record.source->setWatcher({}); // others may share the source: it must not call us any more
}

Future<bool> ConfigurationImpl::addSource(const std::string& name, const std::string& group,
                                          int order, bool readOnly,
                                          std::shared_ptr<ConfigurationSource> source) {
    const ConfigurationSource* const pointee = source.get();
    const std::type_info& type = typeid(*pointee); // throws std::bad_typeid for a null pointer
    detail::logCore("addSource: ", name, ", ", group, ", ", order, ", ", readOnly, ", ",
                    type.name());

    Lock lock(mutex);
    if (findSource(name) != sources.end())
        return makeFailedFuture<bool>(
            std::invalid_argument(detail::errors::sourceNameTaken + name));

    const std::string prefix = normalised(group);
    const auto firstNotBefore =
        std::find_if(sources.begin(), sources.end(), [order](const ConfigurationSourceMap& record) {
            return record.order >= order;
        });
    sources.emplace(firstNotBefore, name, prefix, order, readOnly, source);

    for (const std::string& key : source->keys())
        updatePublishers(lock, prefix + key);

    source->setWatcher([this, prefix](const std::string& key) {
        Lock watcherLock(mutex);
        updatePublishers(watcherLock, prefix + key);
    });
    return makeReadyFuture(true);
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

    std::shared_ptr<ConfigurationSource> source; // may die here, so after the lock
    Lock lock(mutex);
    const auto record = findSource(name);
    if (record == sources.end())
        return makeReadyFuture(false);
    source = record->source;
    const std::set<std::string> keys = source->keys();
    sources.erase(findSource(name));

    // The keys go out as the source has them, without its group, so the watchers of the prefixed keys
    // hear nothing of the removal. That is how removal is defined; applications count on the silence.
    for (const std::string& key : keys)
        updatePublishers(lock, key);
    return makeReadyFuture(true);
}

std::shared_ptr<Configuration> ConfigurationImpl::getPtr() {
    return shared_from_this();
}

std::vector<ConfigurationImpl::ConfigurationSourceMap>::iterator
ConfigurationImpl::findSource(const std::string& name) {
    return std::find_if(
        sources.begin(), sources.end(),
        [&name](const ConfigurationSourceMap& record) { return record.name == name; });
}

} // namespace connector::configuration
