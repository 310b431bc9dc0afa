/// connector-config: shows the values of options and where they come from. See
/// docs/connector-config.md.
#include "ExitStatus.hpp"
#include "arguments/Arguments.hpp"
#include "arguments/Help.hpp"
#include "commands/Commands.hpp"
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

void runCommand(ConfigurationImpl& configuration, const Arguments& arguments) {
    switch (arguments.command) {
    case Command::Get:
        return writeOutput(get(configuration, arguments));
    case Command::Keys:
        return writeOutput(keys(configuration, arguments));
    case Command::Show:
        return writeOutput(show(configuration, arguments, terminalOfOutput()));
    case Command::Explain:
        return writeOutput(explain(configuration, arguments, terminalOfOutput()));
    case Command::Watch:
        return watch(configuration, arguments);
    case Command::Serve:
        if (arguments.http)
            return serveHttp(configuration, *arguments.http, Secrets(arguments.secrets));
        return serveStandardInput(configuration.getPtr());
    }
}

void run(const Arguments& arguments) {
    if (!arguments.information.empty())
        return writeOutput(arguments.information);
    const std::unique_ptr<Trace> trace(arguments.trace ? new Trace(Secrets(arguments.secrets))
                                                       : nullptr);
    const auto configuration = std::make_shared<ConfigurationImpl>();
    addSources(*configuration, arguments.sources);
    runCommand(*configuration, arguments);
}

ExitStatus runReportingFailure(int argc, const char* const argv[]) {
    try {
        run(parseArguments(argc, argv));
        return Success;
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
