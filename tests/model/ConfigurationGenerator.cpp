#include "ConfigurationGenerator.hpp"

#include <limits>

namespace test::model {

namespace {

std::string quoted(const std::string& text) {
    return "'" + text + "'";
}

std::string textOf(const Entries& entries) {
    std::string text = "{";
    for (const auto& [key, value] : entries)
        text += " " + quoted(key) + " = " + std::to_string(value);
    return text + " }";
}

std::string place(const std::string& group, int order, bool readOnly) {
    return ", group " + quoted(group) + ", order " + std::to_string(order) +
           (readOnly ? ", read-only" : "");
}

} // namespace

const std::vector<std::string>& ConfigurationGenerator::keys() {
    static const std::vector<std::string> keys = {"a", "n.a", "b", "n.b", "n.n.a", "na", "n", ""};
    return keys;
}

const std::string& ConfigurationGenerator::key() {
    if (chance(50))
        return keys()[below(3)];
    return oneOf(keys());
}

const std::string& ConfigurationGenerator::localKey() {
    static const std::vector<std::string> keys = {"a",   "a",   "a", "b", "n.a",
                                                  "n.a", "n.b", "",  ".a"};
    return oneOf(keys);
}

const std::string& ConfigurationGenerator::name() {
    static const std::vector<std::string> names = {"s", "s", "s",        "t",        "t",       "t",
                                                   "u", "u", "override", "override", "default", ""};
    return oneOf(names);
}

const std::string& ConfigurationGenerator::group() {
    static const std::vector<std::string> groups = {"", "", "", "n", "n", "n.", "n.n", "."};
    return oneOf(groups);
}

int ConfigurationGenerator::order() {
    return oneOf<int>(
        {-1, -1, 0, 0, 0, 1, 1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()});
}

Entries ConfigurationGenerator::entries() {
    Entries entries;
    for (std::size_t count = below(4); count > 0; --count)
        entries.emplace(localKey(), value());
    return entries;
}

Operation ConfigurationGenerator::enumerate() {
    return {"keys", [](ProgramRunner& runner) { return runner.configuration().keys(); }};
}

Operation ConfigurationGenerator::getOption(const std::string& key) {
    return {"get option " + quoted(key),
            [key](ProgramRunner& runner) { return runner.configuration().getOption(key); }};
}

Operation ConfigurationGenerator::destroy() {
    return {"destroy the configuration", [](ProgramRunner& runner) {
                runner.destroyConfiguration();
                return std::string();
            }};
}

Operation ConfigurationGenerator::get() {
    const std::string asked = key();
    return {"get " + quoted(asked),
            [asked](ProgramRunner& runner) { return runner.configuration().get(asked); }};
}

Operation ConfigurationGenerator::has() {
    const std::string asked = key();
    return {"has " + quoted(asked),
            [asked](ProgramRunner& runner) { return runner.configuration().has(asked); }};
}

Operation ConfigurationGenerator::set() {
    const std::string changed = key();
    const int next = value();
    return {"set " + quoted(changed) + " = " + std::to_string(next),
            [=](ProgramRunner& runner) { return runner.configuration().set(changed, next); }};
}

Operation ConfigurationGenerator::setInSource() {
    const std::string changed = key();
    const std::string source = name();
    const int next = value();
    return {
        "set " + quoted(changed) + " = " + std::to_string(next) + " in " + quoted(source),
        [=](ProgramRunner& runner) { return runner.configuration().set(changed, next, source); }};
}

Operation ConfigurationGenerator::addInMemorySource() {
    const std::string added = name();
    const std::string prefix = group();
    const int rank = order();
    const bool readOnly = chance(25);
    const Entries table = entries();
    return {"add " + quoted(added) + place(prefix, rank, readOnly) + " " + textOf(table),
            [=](ProgramRunner& runner) {
                return runner.configuration().addInMemorySource(added, prefix, rank, readOnly,
                                                                table);
            }};
}

Operation ConfigurationGenerator::addOwnSource() {
    const std::string added = name();
    const std::string prefix = group();
    const int rank = order();
    const bool readOnly = chance(25);
    const std::size_t own = below(ownSources);
    return {"add own source " + std::to_string(own) + " as " + quoted(added) +
                place(prefix, rank, readOnly),
            [=](ProgramRunner& runner) {
                return runner.configuration().addOwnSource(added, prefix, rank, readOnly, own);
            }};
}

Operation ConfigurationGenerator::removeSource() {
    const std::string removed = name();
    return {"remove " + quoted(removed), [removed](ProgramRunner& runner) {
                return runner.configuration().removeSource(removed);
            }};
}

/// A direct change, which the source also reports when it has been removed.
Operation ConfigurationGenerator::changeOwnSource() {
    const std::size_t own = below(ownSources);
    const std::string changed = localKey();
    const int next = value();
    return {"change " + quoted(changed) + " = " + std::to_string(next) + " in own source " +
                std::to_string(own),
            [=](ProgramRunner& runner) {
                return answered(runner.configuration().ownSource(own).set(changed, next));
            }};
}

/// Makes the next call of one operation throw, or negates the next answers of has.
Operation ConfigurationGenerator::injectFault() {
    const std::size_t own = below(ownSources);
    const std::string failing = oneOf<std::string>({"get", "set", "has", "keys", "", ""});
    const int negations = 1 + static_cast<int>(below(2));
    return {"own source " + std::to_string(own) +
                (failing.empty() ? " negates has " + std::to_string(negations) + " times"
                                 : " fails the next " + failing),
            [=](ProgramRunner& runner) {
                SourceModel& source = runner.configuration().ownSource(own);
                if (failing.empty())
                    source.negateHas(negations);
                else
                    source.failNext(failing);
                return std::string();
            }};
}

Operation ConfigurationGenerator::watch() {
    const std::string watched = key();
    return {"watch " + quoted(watched), [watched](ProgramRunner& runner) {
                runner.watch(watched);
                return std::string();
            }};
}

Operation ConfigurationGenerator::watchAndSubscribe() {
    const std::string watched = key();
    const auto plan = script();
    return {"watch " + quoted(watched) + " and subscribe " + plan->text,
            [watched, plan](ProgramRunner& runner) {
                runner.watch(watched, plan);
                return std::string();
            }};
}

Operation ConfigurationGenerator::removeStream() {
    const std::uint64_t id = below(12);
    return {"remove stream " + std::to_string(id), [id](ProgramRunner& runner) {
                runner.configuration().removeStream(id);
                return std::string();
            }};
}

Operation ConfigurationGenerator::operation() {
    using Self = ConfigurationGenerator;
    static const std::vector<Maker> makers = weighted({
        {24, &Self::set},
        {9, &Self::setInSource},
        {16, &Self::watchAndSubscribe},
        {3, &Self::watch},
        {4, &Self::subscribe},
        {10, &Self::request},
        {4, &Self::cancel},
        {4, &Self::release},
        {5, &Self::removeStream},
        {3, &Self::followCompletion},
        {2, &Self::offer},
        {4, &Self::get},
        {4, &Self::getAnOption},
        {2, &Self::has},
        {2, &Self::listKeys},
        {9, &Self::addInMemorySource},
        {8, &Self::addOwnSource},
        {8, &Self::removeSource},
        {7, &Self::changeOwnSource},
        {3, &Self::injectFault},
    });
    return (this->*oneOf(makers))();
}

/// @return each maker as often as its weight says
std::vector<ConfigurationGenerator::Maker>
ConfigurationGenerator::weighted(const std::vector<std::pair<std::size_t, Maker>>& choices) {
    std::vector<Maker> makers;
    for (const auto& [weight, maker] : choices)
        makers.insert(makers.end(), weight, maker);
    return makers;
}

} // namespace test::model
