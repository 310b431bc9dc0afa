/// Reads several options at one moment, and resets options.
#include <connector/configuration/ConfigurationImpl.hpp>

#include <connector/configuration/detail/CoreDiagnostics.hpp>
#include <connector/configuration/detail/Errors.hpp>
#include <connector/configuration/registry/Precedence.hpp>
#include <connector/configuration/sources/InMemorySource.hpp>
#include <connector/configuration/sources/detail/LookupScope.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace connector::configuration {

using detail::logCore;

namespace {

bool beginsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

/// Adds the keys of a table or a set that begin with the prefix, with the group in front.
/// @param keyOf  makes a key of an element
template <typename Container, typename KeyOf>
void addBelow(const std::string& prefix, const std::string& group, const Container& elements,
              KeyOf keyOf, std::set<std::string>& all) {
    for (const auto& element : elements) {
        std::string key = group + keyOf(element);
        if (beginsWith(key, prefix))
            all.insert(std::move(key));
    }
}

} // namespace

std::optional<Option> ConfigurationImpl::effectiveOption(Lock& lock, const std::string& key) {
    detail::LookupScope lookup;
    const detail::Supplier supplier = detail::findSupplier(sources, key, lookup, localKeyBuffer);
    if (supplier.record == nullptr)
        return std::nullopt;
    if (mayReadDirectly(supplier))
        return Option{key, supplier.record->name, *supplier.value};
    return doGetOption(lock, key);
}

/// Skips sources whose groups rule the prefix out, and copies no key without the prefix.
std::set<std::string> ConfigurationImpl::keysBelow(const std::string& prefix,
                                                   detail::LookupScope& lookup) {
    std::set<std::string> keys;
    for (ConfigurationSourceMap& record : sources) {
        if (!beginsWith(prefix, record.group) && !beginsWith(record.group, prefix))
            continue;
        if (const auto* const table = record.table.in(lookup))
            addBelow(
                prefix, record.group, *table,
                [](const auto& entry) -> const std::string& { return entry.first; }, keys);
        else
            addBelow(
                prefix, record.group, record.source->keys(),
                [](const std::string& key) -> const std::string& { return key; }, keys);
    }
    return keys;
}

std::vector<Option> ConfigurationImpl::optionsBelow(const std::string& prefix) {
    Lock lock(mutex);
    detail::LookupScope lookup; // one for all keys, so that their values are of one moment
    lookup.enter();
    const std::set<std::string> keys = keysBelow(prefix, lookup);
    std::vector<Option> options;
    options.reserve(keys.size());
    for (const std::string& key : keys) {
        if (std::optional<Option> option = effectiveOption(lock, key))
            options.push_back(*std::move(option));
    }
    return options;
}

std::vector<Option> ConfigurationImpl::optionsOf(const std::vector<std::string>& keys) {
    std::vector<Option> options;
    options.reserve(keys.size());
    Lock lock(mutex);
    detail::LookupScope lookup; // one for all keys, so that their values are of one moment
    lookup.enter();
    for (const std::string& key : keys) {
        if (std::optional<Option> option = effectiveOption(lock, key))
            options.push_back(*std::move(option));
    }
    return options;
}

/// @param target   null when there is none
/// @param failure  the text when there is none, or it is not in memory
Future<bool> ConfigurationImpl::erase(const ConfigurationSourceMap* target, const std::string& key,
                                      const std::string& failure) {
    const auto source =
        target == nullptr ? nullptr : std::dynamic_pointer_cast<InMemorySource>(target->source);
    if (source == nullptr)
        return makeFailedFuture<bool>(std::runtime_error(failure));
    return makeReadyFuture(source->erase(target->localKey(key)));
}

Future<bool> ConfigurationImpl::reset(const std::string& key) {
    logCore("reset: ", key);
    const std::shared_ptr<Configuration> self = weak_from_this().lock();
    const Lock lock(mutex);
    return erase(detail::findWritable(sources, key), key, detail::errors::noWritableSource + key);
}

Future<bool> ConfigurationImpl::reset(const std::string& key, const std::string& source) {
    logCore("reset: ", key, ", ", source);
    const std::shared_ptr<Configuration> self = weak_from_this().lock();
    const Lock lock(mutex);
    const auto record = detail::findByName(sources, source);
    const bool fits = record != sources.end() && !record->readOnly && record->serves(key);
    return erase(fits ? &*record : nullptr, key,
                 detail::errors::sourceNotWritable + key + ", " + source);
}

} // namespace connector::configuration
