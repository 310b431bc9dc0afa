/// The bytes of one connection: plain, or TLS.
#pragma once

#include <boost/asio/buffer.hpp>
#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <memory>
#include <string_view>
#include <utility>

namespace connector::service {

using Socket = boost::asio::generic::stream_protocol::socket;

/// Whoever calls an asynchronous function keeps this object alive until its handler is called. One
/// read and one write may be in progress at a time. Used by one thread.
class Transport {
public:
    using Error = boost::system::error_code;
    using Buffers = std::array<boost::asio::const_buffer, 2>;

    /// @param newSocket  connected
    /// @param context    makes the connection a TLS one; null for a plain one
    Transport(Socket newSocket, const std::shared_ptr<boost::asio::ssl::context>& context)
        : socket(std::move(newSocket)) {
        socket.non_blocking(true);
        if (context != nullptr)
            tls = std::make_unique<Tls>(socket, context);
    }

    /// @param handler  called with an error code, at once if the connection is plain
    template <typename Handler>
    void asyncHandshake(Handler handler) {
        if (tls == nullptr)
            handler(Error());
        else
            tls->stream.async_handshake(boost::asio::ssl::stream_base::server, std::move(handler));
    }

    /// A plain connection needs no buffer while it waits: an idle client costs no more than its
    /// connection.
    /// @param handler  called with an error code and the bytes, which are valid during the call
    template <typename Handler>
    void asyncRead(Handler handler) {
        if (tls != nullptr) {
            tls->stream.async_read_some(
                boost::asio::buffer(tls->buffer),
                [this, handler = std::move(handler)](const Error& error, std::size_t count) {
                    handler(error, std::string_view(tls->buffer.data(), count));
                });
            return;
        }
        socket.async_wait(Socket::wait_read,
                          [this, handler = std::move(handler)](const Error& error) mutable {
                              if (error)
                                  handler(error, std::string_view());
                              else
                                  readAvailable(std::move(handler));
                          });
    }

    /// @param handler  called with an error code and the number of bytes that were written
    template <typename Handler>
    void asyncWrite(const Buffers& buffers, Handler handler) {
        if (tls != nullptr)
            tls->stream.async_write_some(buffers, std::move(handler));
        else
            socket.async_write_some(buffers, std::move(handler));
    }

    /// Tells the client that nothing follows. It can still send.
    void endWriting() noexcept {
        Error ignored;
        socket.shutdown(Socket::shutdown_send, ignored);
    }

    bool isTls() const { return tls != nullptr; }

    /// Ends a TLS connection as RFC 8446, 6.1 asks for. No read and no write may be in progress.
    /// @param handler  called with an error code when the client has ended it, too
    template <typename Handler>
    void asyncEnd(Handler handler) {
        tls->stream.async_shutdown(std::move(handler));
    }

    void close() noexcept {
        Error ignored;
        socket.close(ignored);
    }

    /// Tries to send a text that needs no memory, for when there is none. Not for TLS.
    void sendAtOnce(std::string_view text) noexcept {
        Error ignored;
        if (tls == nullptr && socket.is_open())
            socket.write_some(boost::asio::buffer(text.data(), text.size()), ignored);
    }

private:
    struct Tls {
        Tls(Socket& socket, const std::shared_ptr<boost::asio::ssl::context>& newContext)
            : context(newContext), stream(socket, *newContext) {}

        const std::shared_ptr<boost::asio::ssl::context> context; // of the time of the connection
        boost::asio::ssl::stream<Socket&> stream;
        std::array<char, 16 * 1024> buffer;
    };

    template <typename Handler>
    void readAvailable(Handler handler) {
        static thread_local std::array<char, 64 * 1024> buffer; // for all connections of the thread
        Error error;
        const std::size_t count = socket.read_some(boost::asio::buffer(buffer), error);
        if (error == boost::asio::error::would_block)
            asyncRead(std::move(handler)); // the kernel was mistaken
        else
            handler(error, std::string_view(buffer.data(), count));
    }

    Socket socket;
    std::unique_ptr<Tls> tls;
};

} // namespace connector::service
