#include <connector/service/http/Connection.hpp>

#include <connector/service/messages/ParsedRequest.hpp>

#include <algorithm>
#include <new>
#include <utility>

namespace connector::service {

namespace {

constexpr std::size_t maxPiece = 64 * 1024;      // bytes of one write
constexpr std::size_t maxSizeAtOnce = 16 * 1024; // bytes of a response that waits for no turn
constexpr std::size_t keptInput = 4 * 1024;      // bytes of the buffer of an idle client
constexpr char goOn[] = "HTTP/1.1 100 Continue\r\n\r\n";
constexpr char lastEvent[] = "event: end\ndata: {}\n\n";
constexpr char comment[] = ":\n\n";

/// Needs no memory.
constexpr std::string_view noMemory =
    "HTTP/1.1 503 Service Unavailable\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";

/// Some clients send an empty line behind a body. A request does not begin with it: the client is
/// idle.
/// @return whether the input may be skipped when more arrives
bool isSkipped(std::string_view input) {
    return input.empty() || isBeginningOfEmptyLine(input) || input == "\r\n";
}

/// @return the bytes of a text from a position on, a piece at most
boost::asio::const_buffer pieceOf(std::string_view text, std::size_t position) {
    if (position >= text.size())
        return {};
    return boost::asio::buffer(text.data() + position, std::min(text.size() - position, maxPiece));
}

} // namespace

Connection::Connection(ServerContext& newContext, Socket socket, const Peer& newPeer,
                       const std::shared_ptr<boost::asio::ssl::context>& tls)
    : context(newContext), ends(newPeer), transport(std::move(socket), tls),
      deadline(Clock::now() + context.limits.connect) {
    ++context.metrics.connections;
}

/// Runs a step. Whatever fails in it ends this connection, and nothing else.
template <typename Step>
void Connection::guarded(Step step) noexcept {
    if (state == State::Closed)
        return;
    try {
        try {
            step();
        } catch (const HttpError& error) {
            refuse(error);
        }
    } catch (...) { // no memory
        giveUp();
    }
}

void Connection::start() {
    guarded([this] {
        transport.asyncHandshake([self = shared_from_this()](const Transport::Error& error) {
            if (error)
                self->close();
            else
                self->guarded([&] { self->read(); });
        });
    });
}

void Connection::read() {
    if (std::exchange(isReadPending, true))
        return;
    transport.asyncRead(
        [self = shared_from_this()](const Transport::Error& error, std::string_view bytes) {
            self->isReadPending = false;
            self->guarded([&] { self->received(error, bytes); });
        });
}

void Connection::received(const Transport::Error& error, std::string_view bytes) {
    switch (state) {
    case State::Connecting:
    case State::Idle:
    case State::Reading:
        break;
    default: // nothing is expected any more, but the end
        if (error)
            close();
        else
            read();
        return;
    }
    if (!error) {
        input += bytes;
        process();
    } else if (error == boost::asio::error::eof && state == State::Reading) {
        throw HttpError(Status::bad_request, "Request ends too early");
    } else {
        close();
    }
}

/// Does what the bytes that have arrived allow.
void Connection::process() {
    if (state != State::Reading) {
        if (isSkipped(input))
            return read();
        beginRequest();
    }
    if (!hasHead) {
        if (!parser->readHead(input))
            return read();
        hasHead = true;
        admit();
    }
    readBody();
}

void Connection::beginRequest() {
    state = State::Reading;
    begin = Clock::now();
    deadline = begin + context.limits.head;
    parser.emplace(context.limits.headSize, maxRequestSize);
    hasHead = false;
    isHeadMethod = false;
    request = Request();
}

/// Decides on the head alone whether the request is served.
void Connection::admit() {
    const RequestHead& head = parser->head();
    isHeadMethod = head.method() == boost::beast::http::verb::head;
    isHttp11 = head.version() == 11;
    deadline = begin + context.limits.request;
    const auto method = head.method_string();
    const Operation* const operation =
        context.router.find({method.data(), method.size()}, pathOf(head));
    request.operation = operation; // for the count of requests, also of those that are refused
    const auto rejection =
        context.guard.check(head, ends, operation != nullptr && operation->isPublic);
    if (rejection) {
        const bool isForbidden = rejection->reason == Rejection::Reason::Forbidden;
        throw HttpError(isForbidden ? Status::forbidden : Status::unauthorized, rejection->text);
    }
    request = context.router.resolve(head);
    if (input.empty() && parser->expectsContinue())
        send({goOn, nullptr, 0, Then::ReadBody});
}

void Connection::readBody() {
    if (isWriting) // "100 Continue"
        return;
    if (parser->hasBody() && !parser->readBody(input))
        return read();
    request.body = parser->takeBody();
    serve();
}

void Connection::serve() {
    state = State::Working;
    deadline = never;
    if (context.isStopping)
        throw HttpError(Status::service_unavailable, "Service is stopping");
    if (request.operation->handler == nullptr)
        return beginStream();
    if (request.operation->isImmediate)
        return complete(responseTo(request));
    RequestTask::Done done = [weak = weak_from_this()](const std::optional<Response>& response) {
        const auto self = weak.lock();
        if (self == nullptr || self->state != State::Working)
            return; // the client has left
        self->guarded([&] {
            if (!response)
                throw std::bad_alloc();
            self->complete(*response);
        });
    };
    if (request.operation->isShared)
        context.shared.request(std::move(request), std::move(done));
    else
        context.workers.run(
            std::make_unique<RequestTask>(std::move(request), context.texts, std::move(done)));
}

/// What follows the head cannot be told from a next request if the request has not been read whole.
void Connection::refuse(const HttpError& error) {
    if (isWriting) // "100 Continue", which the client does not take
        return close();
    const bool isWhole = hasHead && (state == State::Working || !parser->hasBody());
    const std::string key = error.key.empty() ? context.router.keyIn(parser->head()) : error.key;
    respond(problemResponse(HttpError(error.status, error.text, key, error.lines)),
            !isWhole || !parser->keepsAlive());
}

void Connection::complete(const Response& response) {
    respond(response, !parser->keepsAlive());
}

void Connection::respond(const Response& response, bool closes) {
    const std::size_t route =
        request.operation == nullptr ? Metrics::otherRoute : request.operation->route;
    context.metrics.countRequest(route, response.status, Clock::now() - begin);
    closes = closes || isFinishing;
    send({formatHead(response, closes, isHttp11), isHeadMethod ? nullptr : response.body, 0,
          closes ? Then::Linger : Then::NextRequest});
}

void Connection::beginStream() {
    const WatchedKeys watched{request.all("key"), request.all("prefix")};
    if (watched.keys.empty() && watched.prefixes.empty())
        throw HttpError(Status::bad_request,
                        "A key or a prefix must be given, as in /watch?key=net.port");
    context.metrics.countRequest(request.operation->route, Status::ok, Clock::now() - begin);
    send({eventStreamHead(), nullptr, 0, isHeadMethod ? Then::Linger : Then::NextEvent});
    if (isHeadMethod)
        return;
    events = context.events.open(watched, request.lastEventId,
                                 [this] { guarded([this] { sendNextEvent(); }); });
    ++context.metrics.eventStreams;
    state = State::Streaming;
    parser.reset(); // an idle stream keeps no memory for requests
    request = Request();
    std::string().swap(input);
    read(); // to notice that the client leaves
}

/// Needs no more than the event that is told: nothing piles up for a slow client.
void Connection::sendNextEvent() {
    if (isWriting)
        return;
    if (isFinishing)
        return endStream();
    if (auto event = events->next()) {
        ++context.metrics.changesTold;
        send({std::move(event->idLine), std::move(event->text), 0, Then::NextEvent});
    } else {
        deadline = never;
        nextComment = Clock::now() + context.limits.comment;
    }
}

void Connection::endStream() {
    send({lastEvent, nullptr, 0, Then::Linger});
}

void Connection::send(Outgoing bytes) {
    output = std::move(bytes);
    isWriting = true;
    if (state != State::Streaming)
        state = output.then == Then::ReadBody ? State::Reading : State::Writing;
    if (state != State::Reading)
        deadline = Clock::now() + context.limits.stall;
    write();
}

/// Many clients get the same event, so each waits for its turn. Short responses do not.
void Connection::write() {
    if (state != State::Streaming && output.size() - output.sent <= maxSizeAtOnce)
        return writePiece();
    context.turns.add([self = shared_from_this()] { self->guarded([&] { self->writePiece(); }); });
}

void Connection::writePiece() {
    const std::string_view body = output.body == nullptr ? std::string_view() : *output.body;
    const std::size_t inBody = output.sent - std::min(output.sent, output.head.size());
    transport.asyncWrite(
        {pieceOf(output.head, output.sent), pieceOf(body, inBody)},
        [self = shared_from_this()](const Transport::Error& error, std::size_t count) {
            self->guarded([&] { self->written(error, count); });
        });
}

void Connection::written(const Transport::Error& error, std::size_t count) {
    if (error)
        return close();
    output.sent += count;
    if (state != State::Reading)
        deadline = Clock::now() + context.limits.stall;
    if (output.sent < output.size())
        return write();
    isWriting = false;
    output.head.clear();
    output.body.reset();
    sendingDone();
}

void Connection::sendingDone() {
    switch (output.then) {
    case Then::ReadBody:
        return readBody();
    case Then::NextRequest:
        return nextRequest();
    case Then::NextEvent:
        if (events == nullptr)
            return linger();
        events->sent();
        return sendNextEvent();
    case Then::Linger:
        return linger();
    }
}

void Connection::nextRequest() {
    if (isFinishing)
        return linger();
    state = State::Idle;
    deadline = Clock::now() + context.limits.idle;
    parser.reset();
    if (input.empty() && input.capacity() > keptInput)
        std::string().swap(input); // of a long request
    process();
}

/// Lets the client read everything before the connection ends: bytes that are not read when it is
/// closed would make the system cut it.
void Connection::linger() {
    if (isFinishing && events != nullptr)
        return close(); // all that the client has sent was read, so nothing is cut
    endEvents();
    events.reset();
    state = State::Lingering;
    deadline = Clock::now() + context.limits.close;
    if (transport.isTls() && !isReadPending) {
        transport.asyncEnd([self = shared_from_this()](const Transport::Error&) { self->close(); });
        return;
    }
    transport.endWriting();
    read();
}

void Connection::endEvents() noexcept {
    if (events != nullptr)
        --context.metrics.eventStreams;
}

void Connection::tick(Clock::time_point now) noexcept {
    guarded([&] {
        if (now >= deadline)
            expire();
        else if (state == State::Streaming && !isWriting && now >= nextComment)
            send({comment, nullptr, 0, Then::NextEvent});
    });
}

void Connection::expire() {
    if (state == State::Reading)
        throw HttpError(Status::request_timeout, "Request did not arrive in time");
    close();
}

void Connection::finish(Clock::time_point last) noexcept {
    isFinishing = true;
    guarded([this, last] {
        switch (state) {
        case State::Connecting:
        case State::Idle:
            return close();
        case State::Streaming:
            return sendNextEvent();
        case State::Reading:
            deadline = std::min(deadline, last);
            return;
        default:
            return;
        }
    });
}

/// There is no memory for a response.
void Connection::giveUp() noexcept {
    const bool canSay = state == State::Reading || state == State::Working;
    if (canSay && !isWriting)
        transport.sendAtOnce(noMemory);
    close();
}

void Connection::close() noexcept {
    if (std::exchange(state, State::Closed) == State::Closed)
        return;
    --context.metrics.connections;
    endEvents(); // the session itself ends with this object: the hub may be telling it an event
    transport.close();
}

} // namespace connector::service
