#include <connector/service/http/Connection.hpp>

#include <connector/service/access/RequestTarget.hpp>

namespace connector::service {

namespace {

Response rejected(const Rejection& rejection) {
    const Status status = rejection.reason == Rejection::Reason::Unauthenticated
                              ? HTTPResponse::HTTP_UNAUTHORIZED
                              : HTTPResponse::HTTP_FORBIDDEN;
    return HttpFailure(status, rejection.text).response();
}

} // namespace

void Connection::run() {
    try {
        serve();
    } catch (const std::exception&) {
    }
}

void Connection::serve() {
    Wire wire(socket(), shared.ending, shared.patience.request);
    RequestReader reader(wire);
    Answer answered = answer(reader);
    if (const auto* const request = std::get_if<WatchRequest>(&answered)) {
        if (watch(request->key))
            return; // the connection is the writer's now
        answered =
            HttpFailure(HTTPResponse::HTTP_SERVICE_UNAVAILABLE, "No more streams").response();
    }
    wire.extend(shared.patience.response);
    send(wire, std::get<Response>(answered), reader.asksForHeadOnly());
    wire.hangUp(shared.patience.goodbye);
}

/// Piece by piece: a body may be too large to have it twice.
void Connection::send(Wire& wire, const Response& response, bool headOnly) {
    wire.sendWithMore(headOf(response));
    if (headOnly)
        return; // what was held back goes when we hang up
    wire.sendWithMore(response.body);
    wire.send(bodyEnd);
}

Answer Connection::answer(RequestReader& reader) {
    try {
        const Poco::Net::HTTPRequest& head = reader.readHead();
        if (const auto rejection = shared.guard.check(head, socket().address()))
            return rejected(*rejection);
        return shared.resources.answer(head.getMethod(),
                                       parseRequestTarget(head.getURI()).pathAndQuery,
                                       [&reader] { return reader.readBody(); });
    } catch (const HttpFailure& failure) {
        return failure.response();
    } catch (const ClientLost&) {
        throw;
    } catch (const std::exception& error) { // the configuration's
        return Response{HTTPResponse::HTTP_UNPROCESSABLE_ENTITY, errorText(error), {}};
    }
}

/// @return false if nobody can watch any more
bool Connection::watch(const std::string& key) {
    EventWriter& events = shared.events;
    const auto stream =
        std::make_shared<EventStream>(shared.configuration, key, [&events] { events.wake(); });
    shared.configuration.watchOption(key)->subscribe(stream);
    if (events.add(socket(), stream, beginningOfEvents()))
        return true;
    stream->cancel();
    return false;
}

} // namespace connector::service
