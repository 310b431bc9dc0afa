/// The documents that a schema writes: help, sample file, JSON Schema.
#include <connector/configuration/typed/detail/SchemaCore.hpp>

#include <connector/configuration/typed/detail/PropertyText.hpp>
#include <connector/configuration/typed/detail/Secrets.hpp>
#include <connector/configuration/typed/detail/Texts.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace connector::configuration::detail {

namespace {

/// Key, type, default and description.
using Row = std::array<std::string, 4>;

std::string shownDefault(const DeclaredOption& option, void* settings) {
    return option.isRequired ? "(required)" : helpDefault(option, settings);
}

/// @return how many code points the text has
std::size_t widthOf(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char character) {
        return (static_cast<unsigned char>(character) & 0xC0) != 0x80;
    }));
}

std::array<std::size_t, 4> widthsOf(const std::vector<Row>& rows) {
    std::array<std::size_t, 4> widths{};
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], widthOf(row[column]));
    }
    return widths;
}

/// Adds the members of a check. What two checks say of the same thing must hold both.
void addFacets(Facets& facets, const Facets& check, std::vector<std::string>& set,
               std::string& others) {
    for (const auto& [name, json] : check.all()) {
        if (std::find(set.begin(), set.end(), name) == set.end()) {
            facets.set(name, json);
            set.push_back(name);
        } else {
            others += (others.empty() ? "" : ",") + Facets{{name, json}}.json();
        }
    }
}

std::string optionSchema(const DeclaredOption& option, void* settings) {
    Facets facets = option.type->facets();
    // What a type bounds, a check bounds closer; the names of an enumeration stay beside a choice.
    std::vector<std::string> set{"pattern"};
    std::string others;
    for (const auto& [name, json] : facets.all()) {
        if (name == "enum")
            set.push_back(name);
    }
    for (const Check& check : option.checks)
        addFacets(facets, check.facets, set, others);
    if (!others.empty())
        facets.set("allOf", '[' + others + ']');
    facets.set("description", jsonString(option.description));
    if (!option.isRequired && !looksSecret(option.key)) {
        if (const auto json = option.type->json(option.place(settings)))
            facets.set("default", *json);
    }
    return facets.json();
}

} // namespace

std::string helpDefault(const DeclaredOption& option, void* settings) {
    const std::optional<std::string> text = defaultText(option, settings);
    if (text && !text->empty() && looksSecret(option.key))
        return texts::hidden;
    return text ? propertyValue(*text) : std::string();
}

std::string SchemaCore::helpText(void* settings) const {
    std::vector<Row> rows;
    for (const DeclaredOption& option : declared)
        rows.push_back(
            {option.key, option.type->name(), shownDefault(option, settings), option.description});
    const std::array<std::size_t, 4> widths = widthsOf(rows);
    std::string text;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column)
            line += row[column] + std::string(widths[column] + 2 - widthOf(row[column]), ' ');
        text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

std::string SchemaCore::sampleProperties(void* settings) const {
    std::string text;
    for (const DeclaredOption& option : declared) {
        const std::optional<std::string> value = defaultText(option, settings);
        const std::string type = option.type->name() + (option.isRequired ? ", required" : "");
        text += (text.empty() ? "" : "\n") +
                propertyComment(option.description + (option.description.empty() ? "(" : " (") +
                                type + ')');
        text += (value ? "" : "# ") + propertyKey(option.key) + '=' +
                propertyValue(value.value_or(std::string())) + '\n';
    }
    return text;
}

std::string SchemaCore::jsonSchema(void* settings) const {
    Facets properties;
    std::string required;
    for (const DeclaredOption& option : declared) {
        properties.set(option.key, optionSchema(option, settings));
        if (option.isRequired)
            required.append(required.empty() ? "" : ",").append(jsonString(option.key));
    }
    return Facets{{"$schema", "\"https://json-schema.org/draft/2020-12/schema\""},
                  {"type", "\"object\""},
                  {"properties", properties.json()},
                  {"required", '[' + required + ']'},
                  {"additionalProperties", "false"}}
        .json();
}

} // namespace connector::configuration::detail
