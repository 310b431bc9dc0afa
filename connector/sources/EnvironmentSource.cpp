#include <connector/sources/EnvironmentSource.hpp>

#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace connector::sources {

namespace {

/// The options found so far, and the variable that each one comes from.
class Collection {
public:
    void add(std::string_view variable, const std::string& key, std::string_view value) {
        const auto [first, isNew] = variables.emplace(key, variable);
        if (!isNew)
            throw std::invalid_argument("Two environment variables for one key: " + first->second +
                                        ", " + std::string(variable));
        options.emplace(key, std::string(value));
    }

    Table options;

private:
    std::map<std::string, std::string> variables; // by key
};

/// @return the key for the part of a variable's name after the prefix
std::string keyOf(std::string_view rest) {
    std::string key;
    for (std::size_t i = 0; i < rest.size(); ++i) {
        if (rest.substr(i, 2) == "__") {
            key += '.';
            ++i;
        } else {
            key +=
                rest[i] >= 'A' && rest[i] <= 'Z' ? static_cast<char>(rest[i] - 'A' + 'a') : rest[i];
        }
    }
    return key;
}

Table variablesWith(std::string_view prefix) {
    Collection collection;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view variable = *entry;
        const std::size_t sign = variable.find('=');
        if (sign == std::string_view::npos)
            continue;
        const std::string_view name = variable.substr(0, sign);
        if (name.size() > prefix.size() && name.substr(0, prefix.size()) == prefix)
            collection.add(name, keyOf(name.substr(prefix.size())), variable.substr(sign + 1));
    }
    return std::move(collection.options);
}

Table variablesOf(const std::map<std::string, std::string>& keyOfVariable) {
    Collection collection;
    for (const auto& [variable, key] : keyOfVariable) {
        if (const char* const value = std::getenv(variable.c_str()))
            collection.add(variable, key, value);
    }
    return std::move(collection.options);
}

} // namespace

EnvironmentSource::EnvironmentSource(const std::string& prefix)
    : TableSource(variablesWith(prefix)) {
}

EnvironmentSource::EnvironmentSource(const std::map<std::string, std::string>& keyOfVariable)
    : TableSource(variablesOf(keyOfVariable)) {
}

EnvironmentSource::EnvironmentSource(const char* prefix) : EnvironmentSource(std::string(prefix)) {
}

EnvironmentSource::~EnvironmentSource() = default;

} // namespace connector::sources
