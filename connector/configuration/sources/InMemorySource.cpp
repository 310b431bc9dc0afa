#include <connector/configuration/sources/InMemorySource.hpp>

#include <connector/configuration/detail/OptionMap.hpp>

#include <utility>

namespace connector::configuration {

InMemorySource::InMemorySource(std::unordered_map<std::string, OptionValue>&& initialValues)
    : values(std::move(initialValues)) {
}

InMemorySource::~InMemorySource() = default;

OptionValue InMemorySource::get(const std::string& key) {
    return detail::at(values, key);
}

OptionValue InMemorySource::set(const std::string& key, OptionValue value) {
    OptionValue result;
    const auto entry = values.find(key);
    if (entry != values.end()) {
        result = std::exchange(entry->second, std::move(value));
    } else {
        result = value;
        values.emplace(key, std::move(value));
    }
    if (watcher)
        watcher(key);
    return result;
}

bool InMemorySource::erase(const std::string& key) {
    if (values.erase(key) == 0)
        return false;
    if (watcher)
        watcher(key);
    return true;
}

bool InMemorySource::has(const std::string& key) {
    return values.find(key) != values.end();
}

void InMemorySource::setWatcher(Watcher newWatcher) {
    watcher.swap(newWatcher);
}

std::set<std::string> InMemorySource::keys() {
    return detail::keysOf(values);
}

} // namespace connector::configuration
