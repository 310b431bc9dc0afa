#include "commands/Check.hpp"

#include "checking/CheckedFile.hpp"
#include "checking/FileContent.hpp"
#include "checking/Reports.hpp"
#include "checking/UnifiedDiff.hpp"
#include "display/Output.hpp"

#include <connector/configuration/properties/Lint.hpp>

#include <algorithm>
#include <memory>
#include <utility>

namespace connector_config {

using connector::service::Secrets;

namespace {

namespace properties = connector::configuration::properties;

using Action = CheckArguments::Action;
using Output = CheckArguments::Output;

class Checker {
public:
    Checker(const CheckArguments& newArguments, const Secrets& newSecrets)
        : arguments(newArguments), secrets(newSecrets) {
        if (arguments.schemaFile)
            schema = std::make_unique<SchemaCheck>(readFile(*arguments.schemaFile), secrets);
        for (const std::string& name : arguments.disabledRules) {
            if (const auto rule = properties::ruleNamed(name))
                ignoredRules.insert(*rule);
        }
    }

    CheckResult run() {
        for (const std::string& name : arguments.files)
            files.push_back(checked(name));
        writeOutput(report());
        return result();
    }

private:
    CheckedFile checked(const std::string& name) {
        CheckedFile file;
        file.name = name;
        try {
            file.text = readFile(name);
            if (arguments.action != Action::Report && isPropertyFile(name))
                fix(file);
            findIn(file, schema.get(), secrets, arguments.disabledRules);
        } catch (const std::exception& error) {
            file.error = error.what();
            printError(file.error);
        }
        return file;
    }

    /// Rewrites the file, or remembers how it would be rewritten.
    void fix(CheckedFile& file) {
        std::string fixed = properties::fixed(file.text, ignoredRules);
        if (arguments.action == Action::Diff) {
            differences += unifiedDiff(file.name, file.text, fixed);
        } else if (fixed != file.text) {
            replaceFile(file.name, file.text, fixed);
            file.text = std::move(fixed);
        }
    }

    std::string report() const {
        if (arguments.action == Action::Diff)
            return differences;
        switch (arguments.output) {
        case Output::Json:
            return asJson(files);
        case Output::Sarif:
            return asSarif(files);
        case Output::Lines:
            break;
        }
        return asLines(files);
    }

    CheckResult result() const {
        const auto any = [this](auto condition) {
            return std::any_of(files.begin(), files.end(), condition);
        };
        if (any([](const CheckedFile& file) { return !file.error.empty(); }))
            return CheckResult::Failed;
        return any([](const CheckedFile& file) { return !file.findings.empty(); })
                   ? CheckResult::Findings
                   : CheckResult::Clean;
    }

    const CheckArguments& arguments;
    const Secrets& secrets;
    std::unique_ptr<const SchemaCheck> schema;
    std::set<properties::Rule> ignoredRules;
    std::vector<CheckedFile> files;
    std::string differences;
};

} // namespace

CheckResult check(const CheckArguments& arguments, const Secrets& secrets) {
    std::unique_ptr<Checker> checker;
    try {
        checker = std::make_unique<Checker>(arguments, secrets);
    } catch (const std::exception& error) {
        printError(error.what()); // the schema
        return CheckResult::Failed;
    }
    return checker->run();
}

} // namespace connector_config
