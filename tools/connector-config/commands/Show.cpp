#include "Commands.hpp"

#include "display/Table.hpp"
#include "values/ValueText.hpp"
#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>
#include <connector/service/text/Secrets.hpp>

#include <Poco/JSON/Array.h>

namespace connector_config {

using connector::service::escaped;
using connector::service::Secrets;
using connector::service::toJson;
using connector::service::toText;

namespace {

using connector::configuration::Option;

std::vector<Option> optionsToShow(ConfigurationImpl& configuration, const Arguments& arguments) {
    const Secrets secrets(arguments.secrets);
    std::vector<Option> options;
    for (const std::string& key : keysWithPrefix(configuration, arguments.prefix))
        options.push_back(secrets.shown(configuration.getOption(key).get()));
    return options;
}

std::string asJson(const std::vector<Option>& options) {
    Poco::JSON::Array::Ptr array = new Poco::JSON::Array;
    for (const Option& option : options)
        array->add(toJson(option));
    return toText(array) + '\n';
}

std::string asTable(const std::vector<Option>& options, const Terminal& terminal) {
    if (options.empty())
        return "";
    constexpr std::size_t valueColumn = 2;
    Table table;
    table.add({{"KEY", Style::Strong},
               {"TYPE", Style::Strong},
               {"VALUE", Style::Strong},
               {"SOURCE", Style::Strong}});
    for (const Option& option : options)
        table.add({{escaped(option.key)},
                   {nameOf(typeOf(option.value)), Style::Quiet},
                   {shownText(option.value)},
                   {escaped(option.source), Style::Quiet}});
    return table.textCutToWidth(terminal, valueColumn);
}

} // namespace

std::string show(ConfigurationImpl& configuration, const Arguments& arguments,
                 const Terminal& terminal) {
    const std::vector<Option> options = optionsToShow(configuration, arguments);
    return arguments.json ? asJson(options) : asTable(options, terminal);
}

} // namespace connector_config
