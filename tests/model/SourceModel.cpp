#include "SourceModel.hpp"

#include <algorithm>
#include <stdexcept>

namespace test::model {

int SourceModel::get(const std::string& key) {
    called("get", key);
    const auto entry = find(key);
    if (entry == entries.end())
        throw std::out_of_range("unordered_map::at: key not found");
    return entry->second;
}

int SourceModel::set(const std::string& key, int value) {
    called("set", key);
    int result = value;
    const auto entry = find(key);
    if (entry == entries.end())
        entries.emplace_back(key, value);
    else
        result = std::exchange(entry->second, value);
    if (const Watcher current = watcher)
        current(key);
    return result;
}

bool SourceModel::has(const std::string& key) {
    called("has", key);
    const bool truth = find(key) != entries.end();
    if (negations == 0)
        return truth;
    --negations;
    return !truth;
}

void SourceModel::setWatcher(Watcher newWatcher) {
    called(newWatcher ? "watched" : "unwatched", "");
    watcher = std::move(newWatcher);
}

std::set<std::string> SourceModel::keys() {
    called("keys", "");
    std::set<std::string> keys;
    for (const Entry& entry : entries)
        keys.insert(entry.first);
    return keys;
}

void SourceModel::called(const std::string& operation, const std::string& key) {
    if (journal != nullptr)
        journal->note(name + " " + operation + " '" + key + "'");
    if (failing != operation)
        return;
    failing.clear();
    throw std::runtime_error(name + " fails in " + operation);
}

std::vector<SourceModel::Entry>::iterator SourceModel::find(const std::string& key) {
    return std::find_if(entries.begin(), entries.end(),
                        [&key](const Entry& entry) { return entry.first == key; });
}

} // namespace test::model
