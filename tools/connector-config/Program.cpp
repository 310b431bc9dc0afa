#include "Program.hpp"

#include "arguments/Help.hpp"
#include "commands/Check.hpp"
#include "commands/Commands.hpp"
#include "commands/FileReloading.hpp"
#include "commands/HangupThread.hpp"
#include "commands/OptionReader.hpp"
#include "commands/ServeStandardInput.hpp"
#include "commands/Sources.hpp"
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

ExitStatus statusOf(CheckResult result) {
    if (result == CheckResult::Clean)
        return Success;
    return result == CheckResult::Findings ? Failure : UsageError;
}

bool needsNetwork(const Arguments& arguments) {
    const auto isEtcd = [](const SourceArgument& source) {
        return std::holds_alternative<EtcdArgument>(source);
    };
    return arguments.service || arguments.http ||
           std::any_of(arguments.sources.begin(), arguments.sources.end(), isEtcd);
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
    return runOnSources(arguments, serveWithoutNetwork, {});
}

} // namespace

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
        break; // the callers run them
    }
    return Success;
}

ExitStatus runOnSources(const Arguments& arguments, const Serve& serve, const AddEtcd& addEtcd) {
    const std::unique_ptr<Trace> trace(arguments.trace ? new Trace(Secrets(arguments.secrets))
                                                       : nullptr);
    const auto configuration = std::make_shared<ConfigurationImpl>();
    const NamedFiles files = addSources(*configuration, arguments.sources, addEtcd);
    LocalOptions reader(*configuration);
    if (arguments.command == Command::Watch)
        watch(*configuration, arguments, files);
    else if (arguments.command == Command::Serve)
        serve(configuration, arguments, files);
    else
        return runReader(reader, arguments);
    return Success;
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
