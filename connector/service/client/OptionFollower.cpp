#include <connector/service/client/OptionFollower.hpp>

#include <connector/service/client/ServiceResponses.hpp>

#include <boost/asio/steady_timer.hpp>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <utility>

namespace connector::service {

namespace http = boost::beast::http;
using configuration::Option;

namespace {

constexpr std::size_t maxProblem = 1024 * 1024; // a longer text is no problem document

/// @return whether the service has said that it will not be watched
bool isRefusal(const ServiceError& error) {
    const unsigned status = error.status();
    return status >= 400 && status < 500 && status != 408 && status != 429;
}

bool isEventStream(const ClientResponse& response) {
    constexpr boost::beast::string_view type = "text/event-stream";
    return response[http::field::content_type].substr(0, type.size()) == type;
}

std::string statusLineOf(const ServiceUrl& url, const ClientResponse& response) {
    return "Response of " + url.text + ": " + std::to_string(response.result_int()) + ' ' +
           std::string(response.reason());
}

} // namespace

OptionFollower::OptionFollower(const HttpClientOptions& newOptions, const ClientTarget& newTarget,
                               const ServiceRequests& newRequests, Waiter& newWaiter)
    : options(newOptions), target(newTarget), requests(newRequests), waiter(newWaiter),
      connection(newTarget, newWaiter), delay(options.minRetry, options.maxRetry) {
}

void OptionFollower::run(const WatchedOptions& watched, const OnOption& onOption,
                         const OnLoss& onLoss) {
    while (!waiter.isStopped()) {
        std::optional<Option> option;
        try {
            option = next(watched);
        } catch (const ServiceError& error) {
            parser.reset();
            connection.close(); // the service may wait for that
            if (!wasOpen || isRefusal(error))
                throw;
            if (onLoss)
                onLoss(error);
            waitToReconnect();
        }
        if (option) // outside of the block above: the handler may throw a ServiceError, too
            onOption(*option);
    }
}

/// @return nothing if more must be read
std::optional<Option> OptionFollower::next(const WatchedOptions& watched) {
    if (!parser)
        open(watched);
    const std::optional<ServerEvent> event = events.next();
    if (!event) {
        readMore();
        return std::nullopt;
    }
    lastEventId = event->id;
    if (!event->type.empty()) // "end", or what later services add
        return std::nullopt;
    try {
        return readOption(event->data);
    } catch (const NotUnderstood& error) {
        failToUnderstand(error.what());
    }
}

void OptionFollower::open(const WatchedOptions& watched) {
    connection.open();
    events = EventStreamReader();
    constexpr auto noLimit = std::numeric_limits<std::uint64_t>::max(); // none would mean 0
    connection.start(requests.watch(watched, lastEventId), parser, noLimit);
    const ClientResponse& response = parser->get();
    if (response.result() != http::status::ok) {
        connection.readRest(*parser, maxProblem);
        throw readProblem(response.body(), response.result_int(),
                          statusLineOf(target.url, response));
    }
    if (!isEventStream(response))
        failToUnderstand("it is no event stream");
    wasOpen = true;
    delay.reset();
}

void OptionFollower::readMore() {
    const bool mayFollow = connection.readSome(*parser, options.silence);
    std::string& body = parser->get().body();
    try {
        events.append(body);
    } catch (const std::length_error& error) {
        failToUnderstand(error.what());
    }
    body.clear();
    if (!mayFollow)
        throw ServiceError("Connection to " + target.url.text + " was closed");
}

void OptionFollower::waitToReconnect() {
    boost::asio::steady_timer timer(waiter.context(), delay.next());
    bool isDone = false;
    timer.async_wait([&isDone](const auto&) { isDone = true; });
    waiter.wait(isDone, std::chrono::hours(1));
    timer.cancel();
    waiter.drain(isDone);
}

void OptionFollower::failToUnderstand(const std::string& reason) const {
    throw ServiceError("Response of " + target.url.text + " is not understood: " + reason);
}

} // namespace connector::service
