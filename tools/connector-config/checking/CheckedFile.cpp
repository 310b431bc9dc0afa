#include "checking/CheckedFile.hpp"

#include "arguments/CheckRules.hpp"
#include "checking/Documents.hpp"

#include <connector/configuration/properties/Lint.hpp>

#include <algorithm>
#include <map>
#include <sstream>
#include <tuple>
#include <utility>

namespace connector_config {

using connector::service::Secrets;

namespace {

namespace properties = connector::configuration::properties;

constexpr std::size_t first = 1; // the line and the column of what has no place

void addLintFindings(CheckedFile& file, const Secrets& secrets) {
    std::istringstream stream(file.text);
    const auto isSecret = [&secrets](std::string_view key) { return secrets.isSecret(key); };
    for (properties::Finding& finding : properties::lint(stream, isSecret))
        file.findings.push_back({finding.line, finding.column, std::string(nameOf(finding.rule)),
                                 std::move(finding.text)});
}

using Places = std::map<std::string, std::pair<std::size_t, std::size_t>>;

void addSchemaFindings(CheckedFile& file, const SchemaCheck& schema,
                       const SchemaCheck::Table& table, const Places& places) {
    for (SchemaProblem& problem : schema.check(table)) {
        const auto place = places.find(problem.key);
        const auto [line, column] =
            place == places.end() ? std::make_pair(first, first) : place->second;
        file.findings.push_back({line, column, std::string(problem.rule), std::move(problem.text)});
    }
}

/// The last property of a key is the one that counts.
void checkProperties(CheckedFile& file, const SchemaCheck& schema) {
    SchemaCheck::Table table;
    Places places;
    for (properties::PlacedProperty& property : properties::placedProperties(file.text)) {
        places[property.key] = {property.line, property.column};
        table[std::move(property.key)] = std::move(property.value);
    }
    addSchemaFindings(file, schema, table, places);
}

void checkDocument(CheckedFile& file, const SchemaCheck* schema) {
    Document document = readDocument(file.name);
    if (document.syntaxError)
        file.findings.push_back(*std::move(document.syntaxError));
    else if (schema != nullptr)
        addSchemaFindings(file, *schema, document.table, {});
}

} // namespace

bool isPropertyFile(const std::string& name) {
    return name == "-" || !isDocument(name);
}

void findIn(CheckedFile& file, const SchemaCheck* schema, const Secrets& secrets,
            const std::set<std::string>& disabledRules) {
    file.findings.clear();
    if (!isPropertyFile(file.name)) {
        checkDocument(file, schema);
    } else {
        addLintFindings(file, secrets);
        if (schema != nullptr)
            checkProperties(file, *schema);
    }
    auto& findings = file.findings;
    findings.erase(std::remove_if(findings.begin(), findings.end(),
                                  [&disabledRules](const FileFinding& finding) {
                                      return disabledRules.count(finding.rule) != 0;
                                  }),
                   findings.end());
    std::stable_sort(
        findings.begin(), findings.end(), [](const FileFinding& left, const FileFinding& right) {
            return std::tie(left.line, left.column) < std::tie(right.line, right.column);
        });
}

} // namespace connector_config
