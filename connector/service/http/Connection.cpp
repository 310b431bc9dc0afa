#include <connector/service/http/Connection.hpp>

#include <connector/service/access/RequestTarget.hpp>
#include <connector/service/messages/Reply.hpp>

namespace connector::service {

namespace {

Response rejectionResponse(const Rejection& rejection) {
    const Status status = rejection.reason == Rejection::Reason::Unauthenticated
                              ? HTTPResponse::HTTP_UNAUTHORIZED
                              : HTTPResponse::HTTP_FORBIDDEN;
    return HttpError(status, rejection.text).response();
}

/// Does not concatenate the parts, because the body may be large.
void send(TimedSocket& client, const Response& response, bool headOnly) {
    client.sendPart(formatHead(response));
    if (headOnly)
        return; // the system sends what it has held back when the connection is closed
    client.sendPart(response.body);
    client.send(bodyTerminator);
}

} // namespace

void Connection::run() {
    try {
        serve();
    } catch (const std::exception&) {
    }
}

void Connection::serve() {
    TimedSocket client(socket(), context.shutdown, context.timeouts.request);
    RequestReader reader(client);
    RouteResult result = handle(reader);
    if (const auto* const request = std::get_if<WatchRequest>(&result)) {
        if (startWatching(request->key))
            return; // the connection belongs to the EventWriter now
        result = HttpError(HTTPResponse::HTTP_SERVICE_UNAVAILABLE, "No more streams").response();
    }
    client.restartTimeout(context.timeouts.response);
    send(client, std::get<Response>(result), reader.isHeadRequest());
    client.closeGracefully(context.timeouts.close);
}

RouteResult Connection::handle(RequestReader& reader) {
    try {
        const Poco::Net::HTTPRequest& head = reader.readHead();
        if (const auto rejection = context.guard.check(head, socket().address()))
            return rejectionResponse(*rejection);
        return context.routes.handle(head.getMethod(),
                                     parseRequestTarget(head.getURI()).pathAndQuery,
                                     [&reader] { return reader.readBody(); });
    } catch (const HttpError& error) {
        return error.response();
    } catch (const ConnectionLost&) {
        throw;
    } catch (const std::exception& error) { // from the configuration
        return Response{HTTPResponse::HTTP_UNPROCESSABLE_ENTITY, errorJson(error), {}};
    }
}

/// @return false if there are too many watchers already
bool Connection::startWatching(const std::string& key) {
    EventWriter& events = context.events;
    const auto stream =
        std::make_shared<EventStream>(context.configuration, key, [&events] { events.wake(); });
    context.configuration.watchOption(key)->subscribe(stream);
    if (events.add(socket(), stream, eventStreamHead()))
        return true;
    stream->cancel();
    return false;
}

} // namespace connector::service
