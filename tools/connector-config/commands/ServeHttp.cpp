#include "commands/ServeHttp.hpp"

#include "commands/FileReloading.hpp"
#include "display/Output.hpp"

#include <connector/service/http/HttpService.hpp>

#include <Poco/Exception.h>
#include <Poco/Net/ServerSocket.h>

#include <algorithm>
#include <csignal>
#include <stdexcept>

#include <pthread.h>
#include <sys/resource.h>

namespace connector_config {

using connector::configuration::ConfigurationImpl;
using connector::service::HttpService;
using connector::service::Policy;
using connector::service::PropertyRoot;
using connector::service::readToken;
using connector::service::RequestGuard;
using connector::service::Secrets;
using connector::service::Token;
using Poco::Net::ServerSocket;
using Poco::Net::SocketAddress;

namespace {

constexpr rlim_t maxDescriptors = 16384;

/// Blocks SIGINT and SIGTERM, to wait for them later. Must be constructed before the first thread
/// is created, because threads inherit the signal mask.
class TerminationSignals {
public:
    TerminationSignals() {
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

/// Each client needs a descriptor, and the default limit is low.
void raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, maxDescriptors));
    ::setrlimit(RLIMIT_NOFILE, &limit); // on failure, fewer clients can connect
}

ServerSocket listen(const ListenAddress& address) {
    constexpr int backlog = 1024;
    try {
        ServerSocket socket;
        // Without SO_REUSEPORT, which would let other processes listen on the same port.
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

void serveHttp(ConfigurationImpl& configuration, const Arguments& arguments,
               const NamedFiles& files) {
    const HttpArguments& http = *arguments.http;
    const Secrets secrets(arguments.secrets);
    RequestGuard guard(http.address.host, tokenOf(http));
    Policy policy = policyOf(http, secrets);
    const ServerSocket socket = listen(http.address);
    // Only now, because reading the token and resolving the host can block, and the signals must
    // interrupt that.
    const TerminationSignals signals;
    raiseDescriptorLimit();
    HttpService service(configuration, std::move(guard), std::move(policy), secrets, socket);
    // Ends before the service, because a reload calls the service's subscribers.
    const FileReloading reloading(files, arguments.followsFiles);

    writeOutput("listening on http://" + socket.address().toString() + '\n');
    signals.wait();
    service.close();
}

} // namespace connector_config
