#include "commands/Commands.hpp"

#include "display/TextTable.hpp"
#include "values/ValueText.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>
#include <connector/service/text/Secrets.hpp>

#include <Poco/JSON/Array.h>

namespace connector_config {

using connector::service::escaped;
using connector::service::jsonText;
using connector::service::Secrets;
using connector::service::toJson;

namespace {

using connector::configuration::Option;

std::vector<Option> optionsToShow(OptionReader& reader, const Arguments& arguments) {
    const Secrets secrets(arguments.secrets);
    std::vector<Option> options;
    for (const Option& option : reader.options(arguments.prefix))
        options.push_back(secrets.masked(option));
    return options;
}

std::string asJson(const std::vector<Option>& options) {
    Poco::JSON::Array::Ptr array = new Poco::JSON::Array;
    for (const Option& option : options)
        array->add(toJson(option));
    return jsonText(array) + '\n';
}

std::string asTable(const std::vector<Option>& options, const Terminal& terminal) {
    if (options.empty())
        return "";
    constexpr std::size_t valueColumn = 2;
    TextTable table;
    table.add({{"KEY", Style::Bold},
               {"TYPE", Style::Bold},
               {"VALUE", Style::Bold},
               {"SOURCE", Style::Bold}});
    for (const Option& option : options)
        table.add({{escaped(option.key)},
                   {typeName(typeOf(option.value)), Style::Secondary},
                   {displayText(option.value)},
                   {escaped(option.source), Style::Secondary}});
    return table.fittedText(terminal, valueColumn);
}

} // namespace

std::string show(OptionReader& reader, const Arguments& arguments, const Terminal& terminal) {
    const std::vector<Option> options = optionsToShow(reader, arguments);
    return arguments.json ? asJson(options) : asTable(options, terminal);
}

} // namespace connector_config
