#include "commands/Commands.hpp"

#include "values/ShellText.hpp"
#include "values/ValueText.hpp"

#include <connector/service/text/Json.hpp>

#include <Poco/JSON/Array.h>

#include <map>
#include <stdexcept>

namespace connector_config {

using connector::service::jsonText;
using connector::service::toJson;

namespace {

using Option = OptionReader::Option;
using Answers = std::vector<OptionReader::Answer>;

/// A single value is asked for as such, so that the diagnostic lines say so.
Answers valuesOf(OptionReader& reader, const std::vector<std::string>& keys) {
    if (keys.size() != 1)
        return reader.answers(keys);
    try {
        return {{Option{keys.front(), "", reader.value(keys.front())}, ""}};
    } catch (const std::exception& failure) {
        return {{std::nullopt, failure.what()}};
    }
}

/// Calls a function for each option, and collects the failures.
template <typename Function>
std::vector<std::string> forEachOption(const Answers& answers, Function function) {
    std::vector<std::string> failures;
    for (const OptionReader::Answer& answer : answers) {
        try {
            if (answer.option)
                function(*answer.option);
            else
                failures.push_back(answer.failure);
        } catch (const std::exception& failure) {
            failures.emplace_back(failure.what());
        }
    }
    return failures;
}

GetResult asText(OptionReader& reader, const std::vector<std::string>& keys) {
    GetResult result;
    result.failures = forEachOption(valuesOf(reader, keys), [&](const Option& option) {
        result.output += plainText(option.value) + '\n';
    });
    return result;
}

GetResult asJson(OptionReader& reader, const std::vector<std::string>& keys) {
    GetResult result;
    Poco::JSON::Array::Ptr options = new Poco::JSON::Array;
    result.failures = forEachOption(reader.answers(keys),
                                    [&](const Option& option) { options->add(toJson(option)); });
    if (keys.size() > 1)
        result.output = jsonText(options) + '\n';
    else if (options->size() == 1)
        result.output = jsonText(options->get(0)) + '\n';
    return result;
}

/// @throws std::runtime_error if two keys have one variable, or a key has none
void checkVariables(const std::vector<std::string>& keys) {
    std::map<std::string, std::string> keyOfVariable;
    for (const std::string& key : keys) {
        const std::string variable = shellVariable(key);
        if (variable.empty())
            throw std::runtime_error("No variable for the empty key");
        const auto [first, isNew] = keyOfVariable.emplace(variable, key);
        if (!isNew && first->second != key)
            throw std::runtime_error("Two keys for the variable " + variable + ": " +
                                     first->second + ", " + key);
    }
}

/// @throws std::runtime_error if the value has a NUL
std::string assignmentOf(const std::string& key, const OptionValue& value) {
    const std::string text = plainText(value);
    if (text.find('\0') != text.npos)
        throw std::runtime_error("No shell variable can hold a NUL: " + key);
    return shellVariable(key) + '=' + shellQuoted(text) + '\n';
}

GetResult forShell(OptionReader& reader, const std::vector<std::string>& keys) {
    checkVariables(keys);
    GetResult result;
    result.failures = forEachOption(valuesOf(reader, keys), [&](const Option& option) {
        result.output += assignmentOf(option.key, option.value);
    });
    return result;
}

} // namespace

GetResult get(OptionReader& reader, const Arguments& arguments) {
    if (arguments.forShell)
        return forShell(reader, arguments.keys);
    return arguments.json ? asJson(reader, arguments.keys) : asText(reader, arguments.keys);
}

} // namespace connector_config
