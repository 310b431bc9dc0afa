#include <connector/configuration/typed/detail/SchemaCore.hpp>

#include <connector/configuration/typed/detail/Secrets.hpp>
#include <connector/configuration/typed/detail/Texts.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace connector::configuration::detail {

OptionType::~OptionType() = default;

SchemaCore::SchemaCore(const std::string& newPrefix) : name(newPrefix) {
    while (!name.empty() && name.back() == '.')
        name.pop_back();
}

SchemaCore::SchemaCore(const SchemaCore&) = default;
SchemaCore& SchemaCore::operator=(const SchemaCore&) = default;
SchemaCore::~SchemaCore() = default;

std::string SchemaCore::keyOf(const std::string& option) const {
    return name.empty() ? option : name + '.' + option;
}

void SchemaCore::add(DeclaredOption&& option) {
    if (option.key.empty())
        throw std::invalid_argument(texts::nameless);
    const std::string key = keyOf(option.key);
    const bool isThere =
        std::any_of(declared.begin(), declared.end(),
                    [&key](const DeclaredOption& other) { return other.key == key; });
    if (isThere)
        throw std::invalid_argument(texts::declaredTwice + option.key);
    option.key = key;
    keys.push_back(key);
    declared.push_back(std::move(option));
}

void SchemaCore::addRule(std::function<std::string(const void*)>&& problem) {
    rules.push_back({name, std::move(problem)});
}

void SchemaCore::addGroup(const std::string& groupName, const SchemaCore& inner,
                          const Place& place) {
    if (groupName.empty())
        throw std::invalid_argument(texts::nameless);
    if (!inner.name.empty())
        throw std::invalid_argument(texts::groupWithPrefix + inner.name);
    for (DeclaredOption option : inner.declared) {
        option.key = groupName + '.' + option.key;
        option.place = [place, innerPlace = option.place](void* settings) {
            return innerPlace(place(settings));
        };
        add(std::move(option));
    }
    for (const DeclaredRule& rule : inner.rules) {
        const std::string key = rule.key.empty() ? groupName : groupName + '.' + rule.key;
        rules.push_back({keyOf(key), [place, problem = rule.problem](const void* settings) {
                             return problem(place(const_cast<void*>(settings)));
                         }});
    }
}

std::string SchemaCore::readOne(const DeclaredOption& option, const OptionValue& value,
                                void* settings) const {
    void* const member = option.place(settings);
    if (!option.type->read(value, member))
        return texts::notConvertible(option.type->name(), shownValue(option.key, value));
    const ShownValue shown(option.key, value);
    for (const Check& check : option.checks) {
        std::string problem = check.problem(member, shown);
        if (!problem.empty())
            return problem;
    }
    return {};
}

bool SchemaCore::same(const void* left, const void* right) const {
    return std::all_of(declared.begin(), declared.end(), [=](const DeclaredOption& option) {
        return option.type->same(option.place(const_cast<void*>(left)),
                                 option.place(const_cast<void*>(right)));
    });
}

std::optional<std::string> defaultText(const DeclaredOption& option, void* settings) {
    return option.isRequired ? std::nullopt : option.type->text(option.place(settings));
}

} // namespace connector::configuration::detail
