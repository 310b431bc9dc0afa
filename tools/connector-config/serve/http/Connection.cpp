#include "serve/http/Connection.hpp"

#include "serve/http/RequestReader.hpp"

namespace connector_config::serve {

void Connection::run() {
    try {
        serve();
    } catch (const std::exception&) {
    }
}

void Connection::serve() {
    Wire wire(socket(), shared.ending, shared.patience.request);
    Answer answered = answer(wire);
    if (const auto* const request = std::get_if<WatchRequest>(&answered)) {
        if (watch(request->key))
            return; // the connection is the writer's now
        answered =
            HttpFailure(HTTPResponse::HTTP_SERVICE_UNAVAILABLE, "No more streams").response();
    }
    wire.extend(shared.patience.response);
    wire.send(bytesOf(std::get<Response>(answered)));
    wire.hangUp(shared.patience.goodbye);
}

Answer Connection::answer(Wire& wire) {
    try {
        RequestReader reader(wire);
        const Poco::Net::HTTPRequest& head = reader.readHead();
        shared.gate.check(head, socket().address());
        return shared.resources.answer(head.getMethod(), head.getURI(),
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

} // namespace connector_config::serve
