#include "commands/Commands.hpp"

#include "display/TextTable.hpp"
#include "values/ValueText.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Explanation.hpp>

namespace connector_config {

using connector::service::escaped;
using connector::service::Explanation;
using connector::service::Secrets;

namespace {

std::vector<Cell> rowOf(const Explanation& explanation, const Explanation::SourceAnswer& answer) {
    const Style style = explanation.supplies(answer) ? Style::Bold : Style::Plain;
    return {{escaped(answer.name)},
            {"order " + std::to_string(answer.order), Style::Secondary},
            {answer.group.empty() ? "" : "group " + escaped(answer.group), Style::Secondary},
            {answer.readOnly ? "read-only" : "", Style::Secondary},
            {escaped(explanation.verdictOn(answer)), style},
            {answer.value ? displayText(*answer.value) : ""}};
}

/// There always is a source to write to, because "override" accepts every key.
std::string textOf(const Explanation& explanation, const std::string& key,
                   const Terminal& terminal) {
    TextTable table;
    for (const Explanation::SourceAnswer& answer : explanation.sources())
        table.add(rowOf(explanation, answer));
    return table.text(terminal) + "set " + escaped(key) + " would go to " +
           escaped(explanation.targetOfSet()->name) + " and " +
           escaped(explanation.verdictOnSet()) + '\n';
}

} // namespace

std::string explain(OptionReader& reader, const Arguments& arguments, const Terminal& terminal) {
    const Explanation explanation(reader.explain(arguments.key), Secrets(arguments.secrets),
                                  arguments.key);
    return arguments.json ? explanation.json() + '\n'
                          : textOf(explanation, arguments.key, terminal);
}

} // namespace connector_config
