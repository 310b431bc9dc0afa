/// A source that records every call and runs hooks of the test.
#pragma once

#include <connector/configuration/sources/ConfigurationSource.hpp>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// The recorded events, in order. Several sources and subscribers can share one journal.
using Journal = std::vector<std::string>;

/// A table of options without a lock. Each call appends "NAME OPERATION KEY" to the journal, then
/// runs the hook of that operation, which may throw or do anything else, then returns.
class ScriptedSource : public connector::configuration::ConfigurationSource {
public:
    using OptionValue = connector::configuration::OptionValue;
    using Hook = std::function<void(const std::string& key)>;

    /// @param newJournal  outlives the source
    ScriptedSource(Journal& newJournal, std::string newName,
                   std::map<std::string, OptionValue> initialValues = {})
        : values(std::move(initialValues)), journal(newJournal), name(std::move(newName)) {}

    ~ScriptedSource() override { note("destroyed"); }

    OptionValue get(const std::string& key) override {
        call("get", onGet, key);
        return values.at(key);
    }

    OptionValue set(const std::string& key, OptionValue value) override {
        call("set", onSet, key);
        values[key] = std::move(value);
        report(key);
        note("set returns");
        return resultOfSet;
    }

    bool has(const std::string& key) override {
        call("has", onHas, key);
        if (answersOfHas.empty())
            return values.count(key) != 0;
        const bool answer = answersOfHas.front();
        answersOfHas.pop_front();
        return answer;
    }

    void setWatcher(Watcher newWatcher) override {
        call(newWatcher ? "watched" : "unwatched", onSetWatcher, "");
        watcher = std::move(newWatcher);
    }

    std::set<std::string> keys() override {
        call("keys", onKeys, "");
        std::set<std::string> keys;
        for (const auto& entry : values)
            keys.insert(entry.first);
        return keys;
    }

    /// Reports a change of the key to the watcher, if there is one.
    void report(const std::string& key) {
        if (watcher)
            watcher(key);
    }

    /// Changes a value without a call of set.
    void change(const std::string& key, OptionValue value) {
        values[key] = std::move(value);
        report(key);
    }

    bool isWatched() const { return watcher != nullptr; }

    std::map<std::string, OptionValue> values;
    OptionValue resultOfSet;       ///< what set returns
    std::deque<bool> answersOfHas; ///< returned by has, in order; then has reads `values`
    Hook onGet, onSet, onHas, onSetWatcher, onKeys;

private:
    void note(const std::string& what) { journal.push_back(name + " " + what); }

    void call(const std::string& operation, const Hook& hook, const std::string& key) {
        note(key.empty() ? operation : operation + " " + key);
        if (hook)
            hook(key);
    }

    Journal& journal;
    const std::string name;
    Watcher watcher;
};

} // namespace test
