#include <connector/sources/detail/Difference.hpp>

#include <algorithm>

namespace connector::sources::detail {

TableChange differenceOf(const Table& before, const Table& after) {
    TableChange change;
    for (const auto& [key, value] : after) {
        const auto old = before.find(key);
        if (old == before.end())
            change.added.push_back(key);
        else if (!(old->second == value)) // a NaN equals nothing
            change.changed.push_back(key);
    }
    for (const auto& entry : before) {
        if (after.count(entry.first) == 0)
            change.removed.push_back(entry.first);
    }
    for (std::vector<std::string>* keys : {&change.added, &change.changed, &change.removed})
        std::sort(keys->begin(), keys->end());
    return change;
}

std::vector<const std::string*> keysInOrder(const TableChange& change) {
    std::vector<const std::string*> keys;
    keys.reserve(change.added.size() + change.changed.size() + change.removed.size());
    for (const std::vector<std::string>* some : {&change.added, &change.changed, &change.removed}) {
        for (const std::string& key : *some)
            keys.push_back(&key);
    }
    std::sort(keys.begin(), keys.end(),
              [](const std::string* left, const std::string* right) { return *left < *right; });
    return keys;
}

} // namespace connector::sources::detail
