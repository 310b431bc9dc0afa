/// A connection to a service.
#pragma once

#include <connector/service/HttpClientOptions.hpp>
#include <connector/service/ServiceError.hpp>
#include <connector/service/client/ServiceUrl.hpp>
#include <connector/service/client/Waiter.hpp>

#include <ostream> // before Beast, which uses it without including it

#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace connector::service {

using ClientRequest = boost::beast::http::request<boost::beast::http::string_body>;
using ClientResponse = boost::beast::http::response<boost::beast::http::string_body>;
using ClientParser = boost::beast::http::response_parser<boost::beast::http::string_body>;

/// Where to connect to, and how long to wait. The same for all connections of a client.
struct ClientTarget {
    ServiceUrl url;
    std::shared_ptr<boost::asio::ssl::context> tls; ///< null for plain connections
    HttpClientOptions::Duration connect;
    HttpClientOptions::Duration request;
};

/// A wait was ended by Waiter::stop.
struct Stopped {};

/// Every function blocks, and throws ServiceError or Stopped; the connection is closed then.
class ClientConnection {
public:
    /// @param newTarget  must outlive this object, as must the waiter
    ClientConnection(const ClientTarget& newTarget, Waiter& newWaiter);
    ~ClientConnection();
    ClientConnection(const ClientConnection&) = delete;
    ClientConnection& operator=(const ClientConnection&) = delete;

    /// @throws ServiceError "Cannot connect to " + url + ": " + reason
    void open();

    /// @return whether the connection is open, and the service has not been seen to close it
    bool isOpen();

    void close() noexcept;

    /// Sends a request and reads the response. Closes the connection if the service asks for it.
    /// @throws ServiceError "No response from " + url + ": " + reason
    ClientResponse exchange(const ClientRequest& request);

    /// @return whether the last failure was that the service had closed the connection before it
    ///         sent anything of the response
    bool wasClosedEarly() const { return closedEarly; }

    /// Sends a request and reads the head of the response.
    /// @param parser     set to one that has read the head
    /// @param bodyLimit  in bytes
    void start(const ClientRequest& request, std::optional<ClientParser>& parser,
               std::uint64_t bodyLimit);

    /// Reads some of the body, which may already be complete.
    /// @return whether anything may follow
    bool readSome(ClientParser& parser, HttpClientOptions::Duration timeout);

    /// Reads the rest of the body, in the time that `start` has left. Reads no further once the
    /// body is longer than a limit.
    /// @param limit  in bytes
    void readRest(ClientParser& parser, std::size_t limit);

private:
    using Socket = boost::asio::generic::stream_protocol::socket;
    using Endpoint = boost::asio::generic::stream_protocol::endpoint;
    using Stream = boost::asio::ssl::stream<Socket&>;
    using Duration = HttpClientOptions::Duration;
    using Error = boost::system::error_code;

    using Clock = std::chrono::steady_clock;

    void startTimer(Duration timeout);
    Duration remaining() const;

    template <typename Start>
    Error run(Start start);

    template <typename Function>
    void withStream(Function function);

    void receive(ClientParser& parser);
    std::vector<Endpoint> endpoints();
    Error connectTo(const Endpoint& endpoint);
    void handshake();
    void setUpVerification();
    std::string reasonOf(const Error& error) const;
    [[noreturn]] void failToConnect(const std::string& reason);
    [[noreturn]] void failToRead(const Error& error);

    const ClientTarget& target;
    Waiter& waiter;
    boost::asio::ip::tcp::resolver resolver;
    Socket socket;
    std::unique_ptr<Stream> tls; // null if the connection is plain
    boost::beast::flat_buffer buffer;
    bool hasReceived = false; // anything of the response
    bool closedEarly = false;
    Clock::time_point deadline; // of the function that is running
};

} // namespace connector::service
