/// The plain model of a source: a list of entries. It shares nothing with the library's tables.
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

    /// One that a configuration makes for itself: nobody sees how it is called.
    SourceModel(std::string newTypeName, const Entries& initialEntries)
        : typeName(std::move(newTypeName)), entries(initialEntries.begin(), initialEntries.end()) {}

    /// One that a program hands in: it writes down how it is called.
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

    /// The next call of the operation ("get", "set", "has", "keys") throws.
    void refuse(const std::string& operation) { refused = operation; }

    /// The next `count` answers of has are wrong.
    void lie(int count) { lies = count; }

    const std::string typeName; ///< as the diagnostics call it

private:
    using Entry = std::pair<std::string, int>;

    void called(const std::string& operation, const std::string& key);
    std::vector<Entry>::iterator find(const std::string& key);

    Journal* journal = nullptr;
    std::string name;
    std::vector<Entry> entries;
    Watcher watcher;
    std::string refused;
    int lies = 0;
};

} // namespace test::model
