/// The reference model of a source: a list of entries. It shares no code with the library's tables.
#pragma once

#include "Journal.hpp"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace test::model {

using Entries = std::map<std::string, int>;

class SourceModel {
public:
    using Watcher = std::function<void(const std::string&)>;

    /// A source that a configuration creates itself. Its calls are not recorded.
    SourceModel(std::string newTypeName, const Entries& initialEntries)
        : typeName(std::move(newTypeName)), entries(initialEntries.begin(), initialEntries.end()) {}

    /// A source that a program adds. It records its calls.
    SourceModel(std::string newTypeName, const Entries& initialEntries, Journal& newJournal,
                std::string newName)
        : SourceModel(std::move(newTypeName), initialEntries) {
        journal = &newJournal;
        name = std::move(newName);
    }

    int get(const std::string& key);
    int set(const std::string& key, int value);
    bool has(const std::string& key);
    void setWatcher(Watcher newWatcher);
    std::set<std::string> keys();

    /// Makes the next call of the operation ("get", "set", "has" or "keys") throw.
    void failNext(const std::string& operation) { failing = operation; }

    /// Negates the next `count` answers of has.
    void negateHas(int count) { negations = count; }

    const std::string typeName; ///< the type name in diagnostic lines

private:
    using Entry = std::pair<std::string, int>;

    void called(const std::string& operation, const std::string& key);
    std::vector<Entry>::iterator find(const std::string& key);

    Journal* journal = nullptr;
    std::string name;
    std::vector<Entry> entries;
    Watcher watcher;
    std::string failing;
    int negations = 0;
};

} // namespace test::model
