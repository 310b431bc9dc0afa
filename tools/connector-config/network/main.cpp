/// connector-config-network and connector-config-etcd: the commands of connector-config that use
/// the network. They are started by connector-config, not by users, and differ in whether the room
/// fleet is linked.
#include "Program.hpp"
#include "commands/Sources.hpp"
#include "fleet/EtcdSources.hpp"
#include "fleet/Fleet.hpp"
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

ExitStatus runFleetCommand(const Arguments& arguments) {
    for (const Assignment& assignment : arguments.fleet.assignments)
        warnOfUnknownType(assignment);
    return runFleet(arguments);
}

/// Whether the program stays and follows its sources
bool lasts(const Arguments& arguments) {
    return arguments.command == Command::Watch || arguments.command == Command::Serve;
}

ExitStatus runOnNetwork(const Arguments& arguments) {
    if (arguments.command == Command::Diff)
        return runDiff(arguments, readRemoteSide);
    if (arguments.service)
        return runOnService(arguments);
    if (arguments.command == Command::Fleet)
        return runFleetCommand(arguments);
    return runOnSources(arguments, arguments.http ? serveHttp : serveWithoutNetwork,
                        [&](auto& configuration, const EtcdArgument& etcd) {
                            addEtcd(configuration, etcd, lasts(arguments));
                        });
}

} // namespace

} // namespace connector_config

int main(int argc, char* argv[]) {
    return connector_config::runProgram(argc, argv, connector_config::runOnNetwork);
}
