#include <connector/service/HttpClient.hpp>

#include <connector/service/access/Token.hpp>
#include <connector/service/client/ClientConnection.hpp>
#include <connector/service/client/ClientTls.hpp>
#include <connector/service/client/OptionFollower.hpp>
#include <connector/service/client/ServiceRequests.hpp>
#include <connector/service/client/ServiceResponses.hpp>
#include <connector/service/client/ServiceUrl.hpp>
#include <connector/service/client/Waiter.hpp>

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace connector::service {

namespace {

ClientTarget targetOf(const HttpClientOptions& options) {
    std::optional<ServiceUrl> url = parseServiceUrl(options.url);
    if (!url)
        throw std::invalid_argument("Not the URL of a service: " + options.url);
    ClientTarget target{std::move(*url), nullptr, options.connect, options.request};
    if (target.url.isTls)
        target.tls = makeClientContext(options);
    return target;
}

std::optional<std::string> tokenOf(const HttpClientOptions& options) {
    if (!options.tokenFile)
        return std::nullopt;
    return readTokenText(*options.tokenFile);
}

/// A proxy may answer with anything, and a service has changed only what it names.
void checkKey(const std::string& received, const std::string& key) {
    if (received != key)
        throw NotUnderstood("it has another option");
}

} // namespace

class HttpClient::Impl {
public:
    explicit Impl(const HttpClientOptions& newOptions)
        : options(newOptions), target(targetOf(options)),
          requests(target.url.authority, tokenOf(options)), connection(target, waiter) {}

    /// @param read  what the body of the response is read by
    template <typename Reader>
    auto ask(const ClientRequest& request, Reader read) {
        const ClientResponse response = exchange(request);
        const unsigned status = response.result_int();
        if (response.result() != boost::beast::http::status::ok)
            throw readProblem(response.body(), status,
                              "Response of " + target.url.text + ": " + std::to_string(status) +
                                  ' ' + std::string(response.reason()));
        try {
            return read(response.body());
        } catch (const NotUnderstood& error) {
            throw ServiceError("Response of " + target.url.text +
                               " is not understood: " + error.what());
        }
    }

    void watch(const WatchedOptions& watched, const OnOption& onOption, const OnLoss& onLoss) {
        const Registration registration(*this);
        OptionFollower follower(options, target, requests, registration.own());
        try {
            follower.run(watched, onOption, onLoss);
        } catch (const Stopped&) {
        }
    }

    void stopWatching() noexcept {
        const std::lock_guard<std::mutex> lock(watching);
        isStopped = true;
        for (Waiter* const watch : watches)
            watch->stop();
    }

    const HttpClientOptions options;
    const ClientTarget target;
    const ServiceRequests requests;

private:
    /// What stopWatching stops.
    class Registration {
    public:
        explicit Registration(Impl& newClient) : client(newClient) {
            const std::lock_guard<std::mutex> lock(client.watching);
            client.watches.insert(&waiter);
            if (client.isStopped)
                waiter.stop();
        }
        ~Registration() {
            const std::lock_guard<std::mutex> lock(client.watching);
            client.watches.erase(&waiter);
        }
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;

        Waiter& own() const { return waiter; }

    private:
        Impl& client;
        mutable Waiter waiter;
    };

    /// A service may close a connection that is idle just when the next request is sent. A request
    /// that changes nothing is then sent once more. Others are not: the service may have executed
    /// them.
    ClientResponse exchange(const ClientRequest& request) {
        const std::lock_guard<std::mutex> lock(requesting);
        if (connection.isOpen()) {
            try {
                return connection.exchange(request);
            } catch (const ServiceError&) {
                if (!connection.wasClosedEarly() || changesOptions(request))
                    throw;
            }
        }
        connection.open();
        return connection.exchange(request);
    }

    /// Of messages, only those that read are sent.
    static bool changesOptions(const ClientRequest& request) {
        using boost::beast::http::verb;
        return request.method() != verb::get && request.method() != verb::post;
    }

    std::mutex requesting; // guards the two below
    Waiter waiter;
    ClientConnection connection;

    std::mutex watching; // guards the two below
    std::set<Waiter*> watches;
    bool isStopped = false;
};

HttpClient::HttpClient(const HttpClientOptions& options) : impl(std::make_unique<Impl>(options)) {
}

HttpClient::~HttpClient() = default;

std::optional<HttpClient::Option> HttpClient::get(const std::string& key) {
    return impl->ask(impl->requests.get(key), [&key](std::string_view json) {
        std::optional<Option> option = readReplyWithOption(json);
        if (option)
            checkKey(option->key, key);
        return option;
    });
}

std::vector<HttpClient::Option> HttpClient::list(const std::string& prefix) {
    return impl->ask(impl->requests.list(prefix), readOptions);
}

std::set<std::string> HttpClient::keys(const std::string& prefix) {
    const std::set<std::string> all = impl->ask(impl->requests.keys(), readReplyWithKeys);
    const auto begin = all.lower_bound(prefix);
    const auto end = std::find_if(begin, all.end(), [&prefix](const std::string& key) {
        return key.compare(0, prefix.size(), prefix) != 0;
    });
    return {begin, end};
}

std::vector<HttpClient::SourceAnswer> HttpClient::explain(const std::string& key) {
    return impl->ask(impl->requests.explain(key), readExplanation);
}

void HttpClient::set(const std::string& key, const OptionValue& value) {
    impl->ask(impl->requests.set(key, value),
              [&key](std::string_view json) { checkKey(readOption(json).key, key); });
}

bool HttpClient::reset(const std::string& key) {
    constexpr unsigned notFound = 404;
    try {
        impl->ask(impl->requests.reset(key),
                  [&key](std::string_view json) { checkKey(readKey(json), key); });
        return true;
    } catch (const ServiceError& error) {
        if (error.status() != notFound || error.key() != key) // or the service has no such path
            throw;
        return false;
    }
}

void HttpClient::watch(const WatchedOptions& watched, const OnOption& onOption,
                       const OnLoss& onLoss) {
    impl->watch(watched, onOption, onLoss);
}

void HttpClient::stopWatching() noexcept {
    impl->stopWatching();
}

} // namespace connector::service
