#include "Program.hpp"

#include "arguments/Help.hpp"
#include "commands/Check.hpp"
#include "commands/Commands.hpp"
#include "commands/FileReloading.hpp"
#include "commands/HangupThread.hpp"
#include "commands/OptionReader.hpp"
#include "commands/ServeStandardInput.hpp"
#include "commands/Sources.hpp"
#include "comparing/PlanCommand.hpp"
#include "comparing/SnapshotCommand.hpp"
#include "comparing/SnapshotFile.hpp"
#include "comparing/SnapshotOptions.hpp"
#include "display/Output.hpp"
#include "display/Trace.hpp"
#include "values/WrongArguments.hpp"

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <variant>

namespace connector_config {

using connector::service::Secrets;

namespace {

ExitStatus report(const GetResult& result) {
    writeOutput(result.output);
    for (const std::string& failure : result.failures)
        printError(failure);
    return result.failures.empty() ? Success : Failure;
}

ExitStatus report(const PlanResult& result) {
    for (const std::string& failure : result.failures)
        printError(failure);
    writeOutput(result.output);
    return result.failures.empty() ? Success : Failure;
}

ExitStatus statusOf(CheckResult result) {
    if (result == CheckResult::Clean)
        return Success;
    return result == CheckResult::Findings ? Failure : UsageError;
}

bool needsNetwork(const Arguments& arguments) {
    const auto isService = [](const DiffSide& side) {
        return std::holds_alternative<connector::service::HttpClientOptions>(side);
    };
    return arguments.service || arguments.http || needsEtcd(arguments) ||
           std::any_of(arguments.sides.begin(), arguments.sides.end(), isService);
}

ExitStatus run(const Arguments& arguments, const RunOnNetwork& runOnNetwork) {
    if (!arguments.information.empty()) {
        writeOutput(arguments.information);
        return Success;
    }
    if (arguments.command == Command::Check)
        return statusOf(check(arguments.check, Secrets(arguments.secrets)));
    // Before the files are read, and before another program is started: no such signal ends them.
    if (arguments.command == Command::Watch || arguments.command == Command::Serve)
        blockHangup();
    if (needsNetwork(arguments))
        return runOnNetwork(arguments);
    if (arguments.command == Command::Diff)
        return runDiff(arguments, {});
    return runOnSources(arguments, serveWithoutNetwork, {});
}

} // namespace

bool needsEtcd(const Arguments& arguments) {
    return std::any_of(
        arguments.sources.begin(), arguments.sources.end(),
        [](const SourceArgument& source) { return std::holds_alternative<EtcdArgument>(source); });
}

void serveWithoutNetwork(const std::shared_ptr<ConfigurationImpl>& configuration,
                         const Arguments& arguments, const NamedFiles& files) {
    const FileReloading reloading(files, arguments.followsFiles);
    serveStandardInput(configuration);
}

ExitStatus runReader(OptionReader& reader, const Arguments& arguments) {
    switch (arguments.command) {
    case Command::Get:
        return report(get(reader, arguments));
    case Command::Keys:
        writeOutput(keys(reader, arguments));
        break;
    case Command::Show:
        writeOutput(show(reader, arguments, terminalOfOutput()));
        break;
    case Command::Explain:
        writeOutput(explain(reader, arguments, terminalOfOutput()));
        break;
    case Command::Watch:
    case Command::Set:
    case Command::Serve:
    case Command::Check:
    case Command::Fleet:
    case Command::Snapshot:
    case Command::Diff:
    case Command::Plan:
        break; // the callers run them
    }
    return Success;
}

ExitStatus runOnSources(const Arguments& arguments, const Serve& serve, const AddEtcd& addEtcd) {
    const std::unique_ptr<Trace> trace(arguments.trace ? new Trace(Secrets(arguments.secrets))
                                                       : nullptr);
    const auto configuration = std::make_shared<ConfigurationImpl>();
    Snapshot snapshot;
    NamedFiles files;
    if (arguments.snapshot)
        replaceSources(*configuration, snapshot = readSnapshotFile(*arguments.snapshot));
    else
        files = addSources(*configuration, arguments.sources, addEtcd);
    SnapshotOptions reader(*configuration, snapshot);
    switch (arguments.command) {
    case Command::Watch:
        watch(*configuration, arguments, files);
        return Success;
    case Command::Serve:
        checkNothingIsMasked(snapshot);
        serve(configuration, arguments, files);
        return Success;
    case Command::Snapshot:
        writeOutput(snapshotOf(*configuration, arguments, snapshot));
        return Success;
    case Command::Plan:
        return report(plan(*configuration, arguments, files, snapshot, terminalOfOutput()));
    default:
        return runReader(reader, arguments);
    }
}

ExitStatus runDiff(const Arguments& arguments, const ReadService& readService) {
    DiffResult result{};
    try {
        result = diff(arguments, terminalOfOutput(), readService);
    } catch (const std::exception& error) {
        printError(error.what());
        return UsageError; // as diff of other programs: neither the same nor different
    }
    writeOutput(result.output);
    return result.isSame ? Success : Failure;
}

int runProgram(int argc, const char* const argv[], const RunOnNetwork& runOnNetwork) {
    try {
        return run(parseArguments(argc, argv), runOnNetwork);
    } catch (const WrongArguments& error) {
        printError(error.what());
        std::cerr << usageLine() << "Try connector-config --help\n" << std::flush;
        return UsageError;
    } catch (const OutputError& error) {
        if (!error.isBrokenPipe())
            printError(error.what());
    } catch (const std::exception& error) {
        printError(error.what());
    }
    return Failure;
}

} // namespace connector_config
