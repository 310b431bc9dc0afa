/// Reading and writing options: the walks over the registry.
#include <connector/configuration/ConfigurationImpl.hpp>

#include <connector/configuration/detail/CoreDiagnostics.hpp>
#include <connector/configuration/detail/Errors.hpp>
#include <connector/configuration/registry/PatientLock.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace connector::configuration {

using detail::logCore;

/// @return the first record that serves the key and whose source has it; null if there is none
const ConfigurationImpl::ConfigurationSourceMap*
ConfigurationImpl::findSupplier(const std::string& key) {
    for (const ConfigurationSourceMap& record : sources) {
        if (record.serves(key) && record.source->has(record.localKey(key)))
            return &record;
    }
    return nullptr;
}

bool ConfigurationImpl::doHas(Lock&, const std::string& key) {
    return findSupplier(key) != nullptr;
}

OptionValue ConfigurationImpl::doGet(Lock&, const std::string& key) {
    const ConfigurationSourceMap* const supplier = findSupplier(key);
    if (supplier == nullptr)
        throw std::runtime_error(detail::errors::noValueForKey + key);
    logCore("get: ", key, " from ", supplier->name);
    return supplier->source->get(supplier->localKey(key));
}

Option ConfigurationImpl::doGetOption(Lock&, const std::string& key) {
    const ConfigurationSourceMap* const supplier = findSupplier(key);
    if (supplier == nullptr)
        throw std::runtime_error(detail::errors::noOptionForKey + key);
    logCore("get option: ", key, " from ", supplier->name);
    return Option{key, supplier->name, supplier->source->get(supplier->localKey(key))};
}

// The two questions, has first and then the value, are part of what a source sees. One that changes its
// mind in between makes the second throw, with a text of its own: that is no missing option.

namespace {

template <typename Source>
void put(std::optional<OptionValue>& place, Source&& value) {
    place.emplace(std::forward<Source>(value));
}

template <typename Source>
void put(std::unique_ptr<OptionValue>& place, Source&& value) {
    place = std::make_unique<OptionValue>(std::forward<Source>(value));
}

} // namespace

/// Leaves `place` empty when nobody has the key.
template <typename Place>
void ConfigurationImpl::lookUpValue(Lock& lock, const std::string& key, Place& place) {
    const TableAnswer answer = askTables(lock, key);
    if (answer.value != nullptr)
        put(place, *answer.value);
    else if (!answer.isComplete && doHas(lock, key))
        put(place, doGet(lock, key));
}

void ConfigurationImpl::lookUp(Lock& lock, const std::string& key,
                               std::unique_ptr<OptionValue>& result) {
    lookUpValue(lock, key, result);
}

void ConfigurationImpl::lookUp(Lock& lock, const std::string& key,
                               std::unique_ptr<Option>& result) {
    const TableAnswer answer = askTables(lock, key);
    if (answer.value != nullptr)
        result.reset(new Option{key, answer.record->name, *answer.value});
    else if (!answer.isComplete && doHas(lock, key))
        result = std::make_unique<Option>(doGetOption(lock, key));
}

std::optional<OptionValue> ConfigurationImpl::valueOf(Lock& lock, const std::string& key) {
    std::optional<OptionValue> value;
    lookUpValue(lock, key, value);
    return value;
}

template <typename T>
Future<T> ConfigurationImpl::answer(const std::string& key) {
    std::unique_ptr<T> result;
    Lock lock = detail::lockPatiently(mutex);
    lookUp(lock, key, result);
    lock.unlock();
    if (!result)
        return makeFailedFuture<T>(std::runtime_error(detail::errors::noSuchOption + key));
    return connector::detail::makeFutureOfCell(std::move(result));
}

Future<OptionValue> ConfigurationImpl::get(const std::string& key) {
    return answer<OptionValue>(key);
}

Future<Option> ConfigurationImpl::getOption(const std::string& key) {
    return answer<Option>(key);
}

Future<bool> ConfigurationImpl::has(const std::string& key) {
    Lock lock = detail::lockPatiently(mutex);
    const TableAnswer answer = askTables(lock, key);
    const bool isThere = answer.isComplete ? answer.value != nullptr : doHas(lock, key);
    lock.unlock();
    return makeReadyFuture(isThere);
}

namespace {

/// Moves a source's keys to all the others, with the group in front. No key is copied: two sources of
/// 100,000 would take two and a half times as long.
void moveKeys(std::set<std::string>&& keys, const std::string& group, std::set<std::string>& all) {
    if (group.empty()) {
        all.merge(keys);
        return;
    }
    while (!keys.empty()) {
        auto node = keys.extract(keys.begin());
        node.value().insert(0, group);
        all.insert(std::move(node));
    }
}

} // namespace

Future<std::set<std::string>> ConfigurationImpl::keys() {
    const Lock lock(mutex);
    std::set<std::string> keys;
    for (const ConfigurationSourceMap& record : sources)
        moveKeys(record.source->keys(), record.group, keys);
    return makeReadyFuture(std::move(keys));
}

// Where a write goes does not depend on who has the key: the first writable source whose group fits
// takes it, even when a read-only one before it keeps supplying the value.

Future<OptionValue> ConfigurationImpl::set(const std::string& key, OptionValue value) {
    logCore("set: ", key);
    const Lock lock(mutex);
    const auto target =
        std::find_if(sources.begin(), sources.end(), [&key](const ConfigurationSourceMap& record) {
            return !record.readOnly && record.serves(key);
        });
    if (target == sources.end())
        return makeFailedFuture<OptionValue>(
            std::runtime_error(detail::errors::noWritableSource + key));
    return write(*target, key, std::move(value));
}

Future<OptionValue> ConfigurationImpl::set(const std::string& key, OptionValue value,
                                           const std::string& source) {
    logCore("set: ", key, ", ", source);
    const Lock lock(mutex);
    const auto target = findSource(source);
    if (target == sources.end() || target->readOnly || !target->serves(key))
        return makeFailedFuture<OptionValue>(
            std::runtime_error(detail::errors::sourceNotWritable + key + ", " + source));
    return write(*target, key, std::move(value));
}

Future<OptionValue> ConfigurationImpl::write(const ConfigurationSourceMap& target,
                                             const std::string& key, OptionValue&& value) {
    logCore("set: ", key, "@", target.name);
    // A watcher that runs inside the source's set may remove the source; it stays until set is over.
    const std::shared_ptr<ConfigurationSource> source = target.source;
    return makeReadyFuture(source->set(target.localKey(key), std::move(value)));
}

std::vector<SourceAnswer> ConfigurationImpl::explain(const std::string& key) {
    const Lock lock(mutex);
    std::vector<SourceAnswer> answers;
    answers.reserve(sources.size());
    for (const ConfigurationSourceMap& record : sources) {
        SourceAnswer answer{record.name,     record.group,       record.order,
                            record.readOnly, record.serves(key), std::nullopt};
        if (answer.servesKey && record.source->has(record.localKey(key)))
            answer.value = record.source->get(record.localKey(key));
        answers.push_back(std::move(answer));
    }
    return answers;
}

} // namespace connector::configuration
