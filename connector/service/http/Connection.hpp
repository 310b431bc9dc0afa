/// One client: its requests, one after the other, and their responses, or a stream of events.
#pragma once

#include <connector/service/events/EventSession.hpp>
#include <connector/service/http/ServerContext.hpp>
#include <connector/service/network/Clock.hpp>
#include <connector/service/network/Peer.hpp>
#include <connector/service/network/Transport.hpp>
#include <connector/service/protocol/Request.hpp>
#include <connector/service/protocol/RequestParser.hpp>
#include <connector/service/protocol/Response.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace connector::service {

/// Used by the network thread only. Asynchronous operations keep it alive.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    /// @param newContext  outlives the connection
    Connection(ServerContext& newContext, Socket socket, const Peer& newPeer,
               const std::shared_ptr<boost::asio::ssl::context>& tls);

    void start();

    /// Ends what has exceeded its time. Called now and then.
    void tick(Clock::time_point now) noexcept;

    /// The server stops: an event stream ends, a request in progress is answered, nothing follows.
    /// @param last  until when a request may still arrive
    void finish(Clock::time_point last) noexcept;

    /// Cuts the connection.
    void close() noexcept;

    bool isClosed() const { return state == State::Closed; }
    const Peer& peer() const { return ends; }

private:
    friend class RequestTask;

    enum class State {
        Connecting, ///< no byte has arrived, or the TLS handshake is not done
        Idle,       ///< between two requests
        Reading,    ///< a request has begun to arrive
        Working,    ///< a worker serves the request
        Writing,    ///< the response is being sent
        Streaming,  ///< events are sent
        Lingering,  ///< all is sent; bytes that still arrive are dropped
        Closed
    };

    /// What follows when everything is sent.
    enum class Then { ReadBody, NextRequest, NextEvent, Linger };

    /// Bytes on their way to the client.
    struct Outgoing {
        std::string head;
        std::shared_ptr<const std::string> body; ///< may be null
        std::size_t sent = 0;
        Then then = Then::Linger;

        std::size_t size() const { return head.size() + (body == nullptr ? 0 : body->size()); }
    };

    template <typename Step>
    void guarded(Step step) noexcept;

    void read();
    void received(const Transport::Error& error, std::string_view bytes);
    void process();
    void beginRequest();
    void admit();
    void readBody();
    void serve();
    void refuse(const HttpError& error);
    void complete(const Response& response);
    void respond(const Response& response, bool closes);
    void beginStream();
    void sendNextEvent();
    void endStream();
    void send(Outgoing bytes);
    void write();
    void writePiece();
    void written(const Transport::Error& error, std::size_t count);
    void sendingDone();
    void nextRequest();
    void linger();
    void endEvents() noexcept;
    void expire();
    void giveUp() noexcept;

    ServerContext& context;
    const Peer ends;
    Transport transport;
    State state = State::Connecting;
    Clock::time_point deadline;
    bool isReadPending = false;
    bool isFinishing = false;

    std::string input; // not parsed yet
    std::optional<RequestParser> parser;
    bool hasHead = false;
    bool isHeadMethod = false;
    bool isHttp11 = true;
    Clock::time_point begin; // of the request
    Request request;

    Outgoing output;
    bool isWriting = false;
    std::unique_ptr<EventSession> events;
    Clock::time_point nextComment = never;
};

} // namespace connector::service
