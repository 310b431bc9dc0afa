#include "checking/SchemaCheck.hpp"

#include "arguments/CheckRules.hpp"
#include "checking/ValueCheck.hpp"
#include "values/Suggestion.hpp"
#include "values/ValueText.hpp"

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Parser.h>

#include <stdexcept>
#include <utility>

namespace connector_config {

namespace {

using Poco::JSON::Object;

constexpr std::size_t deepest = 100; // levels; the parser is recursive

[[noreturn]] void refuse(const std::string& reason) {
    throw std::runtime_error("Schema cannot be used: " + reason);
}

Object::Ptr parse(const std::string& json) {
    try {
        Poco::JSON::Parser parser;
        parser.setDepth(deepest);
        return parser.parse(json).extract<Object::Ptr>();
    } catch (const Poco::BadCastException&) {
        refuse("it is not a JSON object");
    } catch (const Poco::Exception& error) {
        refuse("it is not JSON: " + error.message());
    }
}

Object::Ptr optionsOf(const Object& schema) {
    const Object::Ptr options = schema.getObject("properties");
    if (!options)
        refuse("it has no \"properties\"");
    for (const std::string& key : options->getNames()) {
        if (!options->getObject(key))
            refuse("the option " + key + " is no object");
        checkFacets(*options->getObject(key), key);
    }
    return options;
}

/// @return text in quotation marks, all else as JSON
std::string shownValue(const OptionValue& value) {
    const bool isText = typeOf(value) == ValueType::String || typeOf(value) == ValueType::Ustring;
    return isText ? '"' + displayText(value) + '"' : displayText(value);
}

std::vector<std::string> requiredOf(const Object& schema) {
    std::vector<std::string> required;
    const Poco::JSON::Array::Ptr names = schema.getArray("required");
    for (std::size_t i = 0; names && i < names->size(); ++i) {
        if (!names->get(static_cast<unsigned>(i)).isString())
            refuse("\"required\" has an element that is no string");
        required.push_back(names->getElement<std::string>(static_cast<unsigned>(i)));
    }
    return required;
}

} // namespace

SchemaCheck::SchemaCheck(const std::string& json, connector::service::Secrets newSecrets)
    : secrets(std::move(newSecrets)) {
    const Object::Ptr schema = parse(json);
    options = optionsOf(*schema);
    required = requiredOf(*schema);
    const Poco::Dynamic::Var additional = schema->get("additionalProperties");
    allowsUnknown = !additional.isBoolean() || additional.convert<bool>();
}

std::vector<SchemaProblem> SchemaCheck::check(const Table& table) const {
    std::vector<SchemaProblem> problems;
    for (const auto& [key, value] : table) {
        if (options->has(key))
            checkValue(key, value, problems);
        else if (!allowsUnknown)
            checkUnknown(key, problems);
    }
    for (const std::string& key : required) {
        if (table.count(key) == 0)
            problems.push_back({key, missingOptionRule, key + " is required"});
    }
    return problems;
}

void SchemaCheck::checkUnknown(const std::string& key, std::vector<SchemaProblem>& problems) const {
    problems.push_back(
        {key, unknownOptionRule, key + " is unknown" + suggestion(key, options->getNames())});
}

void SchemaCheck::checkValue(const std::string& key, const OptionValue& value,
                             std::vector<SchemaProblem>& problems) const {
    const std::string problem = valueProblem(value, *options->getObject(key));
    if (problem.empty())
        return;
    const std::string shown =
        secrets.isSecret(key) ? connector::service::Secrets::mask : shownValue(value);
    problems.push_back({key, invalidValueRule, key + ' ' + problem + ": " + shown});
}

} // namespace connector_config
