#include "comparing/DifferenceText.hpp"

#include "display/Output.hpp"
#include "values/ValueText.hpp"
#include "values/ValueType.hpp"

#include <connector/configuration/json/OptionValueJson.hpp>
#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>

#include <utility>

namespace connector_config {

using connector::service::escaped;

namespace {

std::string nameOf(DifferenceKind kind) {
    switch (kind) {
    case DifferenceKind::Added:
        return "added";
    case DifferenceKind::Removed:
        return "removed";
    case DifferenceKind::Changed:
        return "changed";
    case DifferenceKind::Moved:
        return "moved";
    }
    return {}; // unreachable
}

Poco::JSON::Object::Ptr valueAndSource(const Option& option, const Secrets& secrets) {
    Poco::JSON::Object::Ptr object = connector::service::makeObject();
    object->set("source", option.source);
    object->set("value", connector::configuration::fromOptionValue(
                             secrets.masked(option.key, option.value)));
    return object;
}

} // namespace

void DifferenceTable::add(const Difference& difference, const std::string& note) {
    if (difference.before)
        add("-", *difference.before, difference.after ? "" : note);
    if (difference.after)
        add("+", *difference.after, note);
}

void DifferenceTable::add(const std::string& sign, const Option& option, const std::string& note) {
    const Option shown = secrets.masked(option);
    rows.push_back({{sign, Style::Bold},
                    {escaped(shown.key)},
                    {typeName(typeOf(shown.value)), Style::Secondary},
                    {displayText(shown.value)},
                    {escaped(shown.source), Style::Secondary},
                    {escaped(note)}});
}

std::string DifferenceTable::text(const Terminal& terminal) const {
    if (rows.empty())
        return "";
    constexpr std::size_t valueColumn = 3;
    TextTable table;
    table.add({{""},
               {"KEY", Style::Bold},
               {"TYPE", Style::Bold},
               {"VALUE", Style::Bold},
               {"SOURCE", Style::Bold},
               {""}});
    for (const std::vector<Cell>& row : rows)
        table.add(row);
    return table.fittedText(terminal, valueColumn);
}

Poco::JSON::Object::Ptr toJson(const Difference& difference, const Secrets& secrets) {
    Poco::JSON::Object::Ptr object = connector::service::makeObject();
    object->set("key", difference.key);
    object->set("change", nameOf(difference.kind));
    if (difference.before)
        object->set("before", valueAndSource(*difference.before, secrets));
    if (difference.after)
        object->set("after", valueAndSource(*difference.after, secrets));
    return object;
}

Poco::JSON::Array::Ptr toJson(const std::vector<std::string>& texts) {
    Poco::JSON::Array::Ptr array = new Poco::JSON::Array;
    for (const std::string& text : texts)
        array->add(text);
    return array;
}

void reportMasked(const std::vector<std::string>& keys) {
    if (keys.empty())
        return;
    std::string text;
    for (const std::string& key : keys)
        text += (text.empty() ? "" : ", ") + key;
    printError("Not compared, because the values are masked: " + text);
}

} // namespace connector_config
