#include "commands/ServeHttp.hpp"

#include "display/Output.hpp"
#include <connector/service/http/HttpDoor.hpp>

#include <Poco/Exception.h>
#include <Poco/Net/ServerSocket.h>

#include <algorithm>
#include <csignal>
#include <stdexcept>

#include <pthread.h>
#include <sys/resource.h>

namespace connector_config {

using connector::configuration::ConfigurationImpl;
using connector::service::HttpDoor;
using connector::service::Policy;
using connector::service::PropertyRoot;
using connector::service::readToken;
using connector::service::RequestGuard;
using connector::service::Token;
using Poco::Net::ServerSocket;
using Poco::Net::SocketAddress;

namespace {

constexpr rlim_t mostDescriptors = 16384;

/// SIGINT and SIGTERM, which from now on nobody gets but who waits for them here. Threads that are
/// made later do as this one, so this comes before the first.
class EndSignals {
public:
    EndSignals() {
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGTERM);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    }

    void wait() const {
        int received = 0;
        while (sigwait(&signals, &received) != 0) {
        }
    }

private:
    sigset_t signals{};
};

/// Every client takes a descriptor, and the usual limit is low.
void raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, mostDescriptors));
    ::setrlimit(RLIMIT_NOFILE, &limit); // if not, then fewer clients
}

ServerSocket listen(const ListenAddress& address) {
    constexpr int backlog = 1024;
    try {
        ServerSocket socket;
        // Not SO_REUSEPORT, with which somebody else could listen there, too.
        socket.bind(SocketAddress(address.host, address.port), true, false);
        socket.listen(backlog);
        return socket;
    } catch (const Poco::Exception& error) {
        throw std::runtime_error("Cannot listen on " + address.host + ":" +
                                 std::to_string(address.port) + ": " + error.displayText());
    }
}

std::optional<Token> tokenOf(const HttpArguments& arguments) {
    if (!arguments.tokenFile)
        return std::nullopt;
    return readToken(*arguments.tokenFile);
}

Policy policyOf(const HttpArguments& arguments, const Secrets& secrets) {
    std::optional<PropertyRoot> root;
    if (arguments.propertyRoot)
        root.emplace(*arguments.propertyRoot);
    return Policy(arguments.writablePrefixes, root, secrets);
}

} // namespace

void serveHttp(ConfigurationImpl& configuration, const HttpArguments& arguments,
               const Secrets& secrets) {
    RequestGuard guard(arguments.address.host, tokenOf(arguments));
    Policy policy = policyOf(arguments, secrets);
    const ServerSocket socket = listen(arguments.address);
    // Not before: a token may come through a pipe, and a name from far away.
    const EndSignals signals;
    raiseDescriptorLimit();
    HttpDoor door(configuration, std::move(guard), std::move(policy), secrets, socket);

    writeOutput("listening on http://" + socket.address().toString() + '\n');
    signals.wait();
    door.close();
}

} // namespace connector_config
