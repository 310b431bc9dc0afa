/// connector-config-network: the commands of connector-config that use the network. It is started
/// by connector-config, not by users.
#include "Program.hpp"
#include "network/RemoteCommands.hpp"
#include "network/RemoteOptions.hpp"
#include "network/RemoteSide.hpp"
#include "network/ServeHttp.hpp"

namespace connector_config {

namespace {

ExitStatus runOnService(const Arguments& arguments) {
    HttpClient client(*arguments.service);
    RemoteOptions reader(client);
    if (arguments.command == Command::Watch)
        watchRemotely(client, arguments);
    else if (arguments.command == Command::Set)
        setRemotely(client, arguments);
    else
        return runReader(reader, arguments);
    return Success;
}

ExitStatus runOnNetwork(const Arguments& arguments) {
    if (arguments.command == Command::Diff)
        return runDiff(arguments, readRemoteSide);
    return arguments.service ? runOnService(arguments) : runOnSources(arguments, serveHttp);
}

} // namespace

} // namespace connector_config

int main(int argc, char* argv[]) {
    return connector_config::runProgram(argc, argv, connector_config::runOnNetwork);
}
