#include "arguments/CheckOptions.hpp"

#include "arguments/CheckRules.hpp"
#include "arguments/LiteralArguments.hpp"
#include "values/WrongArguments.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace connector_config {

namespace {

using Output = CheckArguments::Output;
using Action = CheckArguments::Action;

void exclude(bool first, const char* firstName, bool second, const char* secondName) {
    if (first && second)
        throw WrongArguments(std::string(firstName) + " excludes " + secondName);
}

} // namespace

void CheckOptions::declare(CLI::App& command) {
    command.add_option("FILE", files)->required();
    command.add_option("--disable", disabledRules)->type_name("RULE")->allow_extra_args(false);
    schema = command.add_option("--schema", schemaFile)->type_name("FILE");
    command.add_flag("--sarif", isSarif)->disable_flag_override();
    command.add_flag("--fix", isFix)->disable_flag_override();
    command.add_flag("--diff", isDiff)->disable_flag_override();
}

CheckArguments CheckOptions::collect(bool json) const {
    exclude(json, "--json", isSarif, "--sarif");
    exclude(isFix, "--fix", isDiff, "--diff");
    exclude(isDiff, "--diff", json, "--json");
    exclude(isDiff, "--diff", isSarif, "--sarif");
    CheckArguments arguments;
    for (const std::string& file : files)
        arguments.files.push_back(unmarked(file));
    const auto standardInputs = std::count(arguments.files.begin(), arguments.files.end(), "-") +
                                (schema->count() != 0 && unmarked(schemaFile) == "-" ? 1 : 0);
    if (standardInputs > 1)
        throw WrongArguments("Standard input can be read only once");
    if (isFix && standardInputs > 0)
        throw WrongArguments("--fix cannot rewrite standard input");
    for (const std::string& marked : disabledRules) {
        const std::string rule = unmarked(marked);
        if (!isCheckRule(rule))
            throw WrongArguments("Unknown rule: " + rule);
        arguments.disabledRules.insert(rule);
    }
    if (schema->count() != 0)
        arguments.schemaFile = unmarked(schemaFile);
    arguments.output = json ? Output::Json : isSarif ? Output::Sarif : Output::Lines;
    arguments.action = isFix ? Action::Fix : isDiff ? Action::Diff : Action::Report;
    return arguments;
}

} // namespace connector_config
