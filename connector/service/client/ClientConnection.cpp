#include <connector/service/client/ClientConnection.hpp>

#include <boost/asio/connect.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>

#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <utility>

#include <sys/socket.h>

namespace connector::service {

namespace asio = boost::asio;
namespace http = boost::beast::http;

namespace {

constexpr std::size_t maxBody = 256 * 1024 * 1024;
constexpr std::uint32_t maxHead = 64 * 1024;
constexpr std::size_t maxBuffer = 2 * maxHead; // also for trailers, and for the line of a chunk

/// Such a response is followed by another one (RFC 9110, 15.2). 101 is not: nobody asked for it.
bool isInterim(unsigned status) {
    return status / 100 == 1 && status != 101;
}

bool isClosing(const boost::system::error_code& error) {
    return error == http::error::end_of_stream || error == asio::error::eof ||
           error == asio::error::connection_reset || error == asio::error::broken_pipe ||
           error == asio::ssl::error::stream_truncated;
}

} // namespace

ClientConnection::ClientConnection(const ClientTarget& newTarget, Waiter& newWaiter)
    : target(newTarget), waiter(newWaiter), resolver(waiter.context()), socket(waiter.context()),
      buffer(maxBuffer) {
}

ClientConnection::~ClientConnection() = default;

/// @param start  starts an operation with the handler that it gets
/// @return the error of the operation; timed_out if it took too long
template <typename Start>
ClientConnection::Error ClientConnection::run(Start start) {
    bool isDone = false;
    Error error;
    start([&isDone, &error](const Error& result, const auto&...) {
        isDone = true;
        error = result;
    });
    const Waiter::Result result = waiter.wait(isDone, remaining());
    if (!isDone) {
        resolver.cancel();
        Error ignored;
        socket.close(ignored);
        waiter.drain(isDone); // the operation uses objects of the caller
    }
    if (result == Waiter::Result::Stopped) {
        close();
        throw Stopped();
    }
    return result == Waiter::Result::TimedOut ? asio::error::timed_out : error;
}

void ClientConnection::startTimer(Duration timeout) {
    deadline = Clock::now() + timeout;
}

ClientConnection::Duration ClientConnection::remaining() const {
    return std::chrono::duration_cast<Duration>(deadline - Clock::now());
}

template <typename Function>
void ClientConnection::withStream(Function function) {
    if (tls != nullptr)
        function(*tls);
    else
        function(socket);
}

void ClientConnection::open() {
    close();
    startTimer(target.connect);
    Error error = asio::error::host_not_found;
    for (const Endpoint& endpoint : endpoints()) {
        error = connectTo(endpoint);
        if (!error)
            break;
    }
    if (error)
        failToConnect(reasonOf(error));
    if (target.tls != nullptr)
        handshake();
}

std::vector<ClientConnection::Endpoint> ClientConnection::endpoints() {
    if (target.url.isUnix())
        return {asio::local::stream_protocol::endpoint(target.url.path)};
    std::vector<Endpoint> found;
    const Error error = run([&](auto handler) {
        resolver.async_resolve(target.url.host, target.url.port,
                               [&found, handler](const Error& result, const auto& entries) mutable {
                                   for (const auto& entry : entries)
                                       found.emplace_back(entry.endpoint());
                                   handler(result);
                               });
    });
    if (error)
        failToConnect(error.message());
    return found;
}

ClientConnection::Error ClientConnection::connectTo(const Endpoint& endpoint) {
    close();
    const Error error = run([&](auto handler) { socket.async_connect(endpoint, handler); });
    Error ignored; // without it, small requests only take longer
    if (!error && !target.url.isUnix())
        socket.set_option(asio::ip::tcp::no_delay(true), ignored);
    return error;
}

void ClientConnection::handshake() {
    tls = std::make_unique<Stream>(socket, *target.tls);
    setUpVerification();
    const Error error =
        run([&](auto handler) { tls->async_handshake(asio::ssl::stream_base::client, handler); });
    if (error)
        failToConnect(reasonOf(error));
}

/// Makes the handshake fail unless the certificate names the host. Names, but not addresses, are
/// also told to the service, which may have a certificate for each.
void ClientConnection::setUpVerification() {
    SSL* const ssl = tls->native_handle();
    const std::string& host = target.url.host;
    X509_VERIFY_PARAM* const parameters = SSL_get0_param(ssl);
    if (X509_VERIFY_PARAM_set1_ip_asc(parameters, host.c_str()) == 1)
        return;
    X509_VERIFY_PARAM_set_hostflags(parameters, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
    if (X509_VERIFY_PARAM_set1_host(parameters, host.c_str(), host.size()) != 1 ||
        SSL_set_tlsext_host_name(ssl, host.c_str()) != 1)
        failToConnect("Host name cannot be verified");
}

std::string ClientConnection::reasonOf(const Error& error) const {
    if (tls == nullptr)
        return error.message();
    const long verification = SSL_get_verify_result(tls->native_handle());
    if (verification == X509_V_OK)
        return error.message();
    return std::string("certificate: ") + X509_verify_cert_error_string(verification);
}

bool ClientConnection::isOpen() {
    if (!socket.is_open())
        return false;
    // The service sends nothing without a request, except for the end of the connection.
    char byte = 0;
    const auto count = ::recv(socket.native_handle(), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK) && buffer.size() == 0;
}

void ClientConnection::close() noexcept {
    tls.reset();
    Error ignored;
    socket.close(ignored);
    buffer.clear();
}

ClientResponse ClientConnection::exchange(const ClientRequest& request) {
    std::optional<ClientParser> parser;
    start(request, parser, maxBody);
    const Error error = run([&](auto handler) {
        withStream([&](auto& stream) { http::async_read(stream, buffer, *parser, handler); });
    });
    if (error)
        failToRead(error);
    if (!parser->keep_alive())
        close();
    return parser->release();
}

void ClientConnection::start(const ClientRequest& request, std::optional<ClientParser>& parser,
                             std::uint64_t bodyLimit) {
    hasReceived = false;
    startTimer(target.request);
    // If this fails, the service may have answered without reading all of the request.
    const Error writing = run([&](auto handler) {
        withStream([&](auto& stream) { http::async_write(stream, request, handler); });
    });
    do {
        parser.emplace();
        parser->header_limit(maxHead);
        parser->body_limit(bodyLimit);
        const Error reading = run([&](auto handler) {
            withStream(
                [&](auto& stream) { http::async_read_header(stream, buffer, *parser, handler); });
        });
        hasReceived = hasReceived || parser->got_some() || buffer.size() > 0;
        if (reading)
            failToRead(writing ? writing : reading);
    } while (isInterim(parser->get().result_int()));
}

bool ClientConnection::readSome(ClientParser& parser, Duration timeout) {
    if (parser.is_done())
        return false;
    startTimer(timeout);
    receive(parser);
    return !parser.is_done();
}

void ClientConnection::readRest(ClientParser& parser, std::size_t limit) {
    while (!parser.is_done() && parser.get().body().size() <= limit)
        receive(parser);
}

void ClientConnection::receive(ClientParser& parser) {
    const Error error = run([&](auto handler) {
        withStream([&](auto& stream) { http::async_read_some(stream, buffer, parser, handler); });
    });
    if (error)
        failToRead(error);
}

void ClientConnection::failToConnect(const std::string& reason) {
    close();
    throw ServiceError("Cannot connect to " + target.url.text + ": " + reason);
}

void ClientConnection::failToRead(const Error& error) {
    closedEarly = !hasReceived && isClosing(error);
    close();
    throw ServiceError("No response from " + target.url.text + ": " + error.message());
}

} // namespace connector::service
