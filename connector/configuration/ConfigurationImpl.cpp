/// Reading and writing options.
#include <connector/configuration/ConfigurationImpl.hpp>

#include <connector/async/detail/ReservedFuture.hpp>
#include <connector/configuration/detail/CoreDiagnostics.hpp>
#include <connector/configuration/detail/Errors.hpp>
#include <connector/configuration/detail/OptionMap.hpp>
#include <connector/configuration/registry/Precedence.hpp>
#include <connector/configuration/registry/SpinThenLock.hpp>
#include <connector/configuration/sources/detail/LookupScope.hpp>

#include <stdexcept>
#include <utility>

namespace connector::configuration {

using detail::logCore;
using detail::LookupScope;
using detail::Supplier;

bool ConfigurationImpl::doHas(Lock&, const std::string& key) {
    LookupScope lookup;
    return detail::findSupplier(sources, key, lookup, localKeyBuffer).record != nullptr;
}

/// Copied from a record before a log line is written, because the log sink may change the registry.
struct ConfigurationImpl::Question {
    std::shared_ptr<ConfigurationSource> source;
    std::string sourceName;
    std::string localKey;
    std::shared_ptr<const detail::OptionMap> table; // where that can be exchanged: the lookup's

    OptionValue value() const {
        return table ? detail::at(*table, localKey) : source->get(localKey);
    }
};

/// @throws std::runtime_error failure + key, when no source has the key
ConfigurationImpl::Question ConfigurationImpl::questionFor(const std::string& key,
                                                           const char* failure) {
    LookupScope lookup;
    const Supplier supplier = detail::findSupplier(sources, key, lookup, localKeyBuffer);
    if (supplier.record == nullptr)
        throw std::runtime_error(failure + key);
    return {supplier.record->source, supplier.record->name, supplier.record->localKey(key),
            supplier.record->table.snapshot()};
}

OptionValue ConfigurationImpl::doGet(Lock&, const std::string& key) {
    LookupScope lookup; // lasts until the source has answered
    lookup.enter();
    const Question question = questionFor(key, detail::errors::noValueForKey);
    logCore("get: ", key, " from ", question.sourceName);
    return question.value();
}

Option ConfigurationImpl::doGetOption(Lock&, const std::string& key) {
    LookupScope lookup;
    lookup.enter();
    const Question question = questionFor(key, detail::errors::noOptionForKey);
    logCore("get option: ", key, " from ", question.sourceName);
    return Option{key, question.sourceName, question.value()};
}

/// A lookup calls a source twice: first to find out whether it has a value, then to get the value.
/// The application's own sources can observe both calls. If a source changes its answer in between,
/// the second walk throws with a text of its own. The second walk is skipped where no source can
/// observe it, which halves the time: the value is in one of the library's own tables, none of the
/// application's sources was called before it, and no log line is written.
bool ConfigurationImpl::mayReadDirectly(const Supplier& supplier) const {
    return supplier.value != nullptr && !supplier.sourcesWereAsked &&
           !detail::coreLogger.enabled(detail::coreSeverity);
}

namespace {

/// @param result  null when no source has the key
template <typename T>
Future<T> futureOf(std::unique_ptr<T> result, const std::string& key) {
    if (!result)
        return makeFailedFuture<T>(std::runtime_error(detail::errors::noSuchOption + key));
    return connector::detail::makeFutureOfCell(std::move(result));
}

} // namespace

Future<OptionValue> ConfigurationImpl::get(const std::string& key) {
    std::unique_ptr<OptionValue> result;
    Lock lock = detail::spinThenLock(mutex);
    LookupScope lookup;
    const Supplier supplier = detail::findSupplier(sources, key, lookup, localKeyBuffer);
    if (mayReadDirectly(supplier))
        result = std::make_unique<OptionValue>(*supplier.value);
    else if (supplier.record != nullptr)
        result = std::make_unique<OptionValue>(doGet(lock, key));
    lock.unlock();
    return futureOf(std::move(result), key);
}

Future<Option> ConfigurationImpl::getOption(const std::string& key) {
    std::unique_ptr<Option> result;
    Lock lock = detail::spinThenLock(mutex);
    LookupScope lookup;
    const Supplier supplier = detail::findSupplier(sources, key, lookup, localKeyBuffer);
    if (mayReadDirectly(supplier))
        result.reset(new Option{key, supplier.record->name, *supplier.value});
    else if (supplier.record != nullptr)
        result.reset(new Option(doGetOption(lock, key)));
    lock.unlock();
    return futureOf(std::move(result), key);
}

Future<bool> ConfigurationImpl::has(const std::string& key) {
    Lock lock = detail::spinThenLock(mutex);
    const bool isThere = doHas(lock, key);
    lock.unlock();
    return makeReadyFuture(isThere);
}

namespace {

/// Moves a source's keys to all the others, with the group in front. No key is copied: two sources
/// of 100,000 would take two and a half times as long.
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

Future<OptionValue> ConfigurationImpl::set(const std::string& key, OptionValue value) {
    logCore("set: ", key);
    const std::shared_ptr<Configuration> self = weak_from_this().lock();
    const Lock lock(mutex);
    const ConfigurationSourceMap* const target = detail::findWritable(sources, key);
    if (target == nullptr)
        return makeFailedFuture<OptionValue>(
            std::runtime_error(detail::errors::noWritableSource + key));
    return write(*target, key, std::move(value));
}

Future<OptionValue> ConfigurationImpl::set(const std::string& key, OptionValue value,
                                           const std::string& source) {
    logCore("set: ", key, ", ", source);
    const std::shared_ptr<Configuration> self = weak_from_this().lock();
    const Lock lock(mutex);
    const auto target = detail::findByName(sources, source);
    if (target == sources.end() || target->readOnly || !target->serves(key))
        return makeFailedFuture<OptionValue>(
            std::runtime_error(detail::errors::sourceNotWritable + key + ", " + source));
    return write(*target, key, std::move(value));
}

/// Allocates what it needs before the source is written to, so that a write that took effect does
/// not fail for lack of memory. Nothing of `target` is used after the log line: a log sink, and a
/// watcher that runs inside the source's set, may remove the source.
Future<OptionValue> ConfigurationImpl::write(const ConfigurationSourceMap& target,
                                             const std::string& key, OptionValue&& value) {
    const std::shared_ptr<ConfigurationSource> source = target.source;
    const std::string localKey = target.localKey(key);
    connector::detail::ReservedFuture<OptionValue> result;
    logCore("set: ", key, "@", target.name);
    return std::move(result).resolve(source->set(localKey, std::move(value)));
}

std::vector<SourceAnswer> ConfigurationImpl::explain(const std::string& key) {
    const Lock lock(mutex);
    LookupScope lookup;
    lookup.enter();
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
