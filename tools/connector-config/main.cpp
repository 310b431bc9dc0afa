/// connector-config: shows the values of options and where they come from. See
/// docs/connector-config.md.
#include "ExitStatus.hpp"
#include "arguments/Arguments.hpp"
#include "arguments/Help.hpp"
#include "commands/Check.hpp"
#include "commands/Commands.hpp"
#include "commands/FileReloading.hpp"
#include "commands/HangupThread.hpp"
#include "commands/ServeHttp.hpp"
#include "commands/ServeStandardInput.hpp"
#include "commands/Sources.hpp"
#include "display/Output.hpp"
#include "display/Trace.hpp"
#include "values/WrongArguments.hpp"

#include <iostream>

namespace connector_config {

using connector::service::Secrets;

namespace {

ExitStatus report(const GetResult& result) {
    writeOutput(result.output);
    for (const std::string& failure : result.failures)
        printError(failure);
    return result.failures.empty() ? Success : Failure;
}

void serve(const std::shared_ptr<ConfigurationImpl>& configuration, const Arguments& arguments,
           const NamedFiles& files) {
    if (arguments.http)
        return serveHttp(configuration, arguments, files);
    const FileReloading reloading(files, arguments.followsFiles);
    serveStandardInput(configuration);
}

ExitStatus runCommand(const std::shared_ptr<ConfigurationImpl>& shared, const Arguments& arguments,
                      const NamedFiles& files) {
    ConfigurationImpl& configuration = *shared;
    switch (arguments.command) {
    case Command::Get:
        return report(get(configuration, arguments));
    case Command::Keys:
        writeOutput(keys(configuration, arguments));
        break;
    case Command::Show:
        writeOutput(show(configuration, arguments, terminalOfOutput()));
        break;
    case Command::Explain:
        writeOutput(explain(configuration, arguments, terminalOfOutput()));
        break;
    case Command::Watch:
        watch(configuration, arguments, files);
        break;
    case Command::Serve:
        serve(shared, arguments, files);
        break;
    case Command::Check:
        break; // needs no configuration
    }
    return Success;
}

ExitStatus statusOf(CheckResult result) {
    if (result == CheckResult::Clean)
        return Success;
    return result == CheckResult::Findings ? Failure : UsageError;
}

ExitStatus run(const Arguments& arguments) {
    if (!arguments.information.empty()) {
        writeOutput(arguments.information);
        return Success;
    }
    if (arguments.command == Command::Check)
        return statusOf(check(arguments.check, Secrets(arguments.secrets)));
    if (arguments.command == Command::Watch || arguments.command == Command::Serve)
        blockHangup(); // before the files are read, so that no signal ends the program
    const std::unique_ptr<Trace> trace(arguments.trace ? new Trace(Secrets(arguments.secrets))
                                                       : nullptr);
    const auto configuration = std::make_shared<ConfigurationImpl>();
    const NamedFiles files = addSources(*configuration, arguments.sources);
    return runCommand(configuration, arguments, files);
}

ExitStatus runReportingFailure(int argc, const char* const argv[]) {
    try {
        return run(parseArguments(argc, argv));
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

} // namespace

} // namespace connector_config

int main(int argc, char* argv[]) {
    return connector_config::runReportingFailure(argc, argv);
}
