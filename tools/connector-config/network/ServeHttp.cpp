#include "network/ServeHttp.hpp"

#include "commands/ExitTimer.hpp"
#include "commands/FileReloading.hpp"
#include "display/Output.hpp"
#include "network/SystemdNotifier.hpp"

#include <connector/service/HttpService.hpp>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <pthread.h>
#include <sys/resource.h>

namespace connector_config {

using connector::configuration::ConfigurationImpl;
using connector::service::HttpOptions;
using connector::service::HttpService;
using connector::service::ListenAddress;

namespace {

constexpr rlim_t maxDescriptors = 16384;

/// Beyond that of the requests in progress.
constexpr std::chrono::milliseconds timeToEnd{500};

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

    /// From now on, the next signal ends the process at once.
    void unblock() const { pthread_sigmask(SIG_UNBLOCK, &signals, nullptr); }

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

/// @param url  of a TCP address, with its host in numbers: a name tells nothing
bool isLoopback(const std::string& url) {
    const std::string host = url.substr(url.find("://") + 3);
    return host.compare(0, 4, "127.") == 0 || host.compare(0, 6, "[::1]:") == 0;
}

/// Every client that reaches the address may read everything but secrets.
/// @param urls  of the addresses, in their order
void warnIfOpen(const HttpOptions& options, const std::vector<std::string>& urls) {
    const bool needsCredentials =
        options.tokenFile || (options.tls && !options.tls->clientAuthority.empty());
    if (needsCredentials)
        return;
    for (std::size_t i = 0; i < urls.size(); ++i) {
        const ListenAddress& address = options.addresses[i];
        if (!address.isUnix() && !isLoopback(urls[i]))
            printError("Warning: every machine that reaches " + address.host +
                       " may read the options; --token-file FILE or --client-ca FILE would "
                       "prevent that");
    }
}

void reloadTls(HttpService& service) {
    try {
        service.reloadTls();
    } catch (const std::exception& failure) {
        printError(failure.what());
    }
}

} // namespace

void serveHttp(const std::shared_ptr<ConfigurationImpl>& configuration, const Arguments& arguments,
               const NamedFiles& files) {
    HttpOptions options = *arguments.http;
    options.secretGlobs = arguments.secrets;
    raiseDescriptorLimit();
    HttpService service(configuration, options);
    // Only now, because reading the token and resolving the host can block, and the signals must
    // interrupt that.
    const TerminationSignals signals;
    warnIfOpen(options, service.urls());
    service.start();
    // Ends before the service, because a reload calls the service's listeners.
    const SystemdNotifier systemd;
    const FileReloading reloading(
        files, arguments.followsFiles,
        [&](ReloadResult result) { service.countReload(result == ReloadResult::Succeeded); },
        [&](const std::function<void()>& reload) {
            systemd.reloading();
            reload();
            reloadTls(service);
            systemd.ready();
        });

    for (const std::string& url : service.urls())
        writeOutput("listening on " + url + '\n');
    systemd.ready();
    signals.wait();
    systemd.stopping();
    signals.unblock();
    exitAfter(options.limits.shutdown + timeToEnd);
    service.stop();
}

} // namespace connector_config
