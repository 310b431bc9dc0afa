/// fixed-text-server TEXT: answers every HTTP request with the same text, on one thread. It shows
/// what the libraries below the service reach on a machine when a server does nothing else.
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>

#include <iostream>
#include <memory>
#include <string>
#include <utility>

namespace {

namespace http = boost::beast::http;
using boost::asio::ip::tcp;

class Session : public std::enable_shared_from_this<Session> {
public:
    Session(tcp::socket newSocket, const std::string& newText)
        : socket(std::move(newSocket)), text(newText) {
        socket.set_option(tcp::no_delay(true));
    }

    void read() {
        request = {};
        http::async_read(socket, buffer, request,
                         [self = shared_from_this()](const auto& error, std::size_t) {
                             if (!error)
                                 self->write();
                         });
    }

private:
    void write() {
        response = {};
        response.version(request.version());
        response.keep_alive(request.keep_alive());
        response.set(http::field::content_type, "application/json");
        response.set(http::field::cache_control, "no-store");
        response.body() = text;
        response.prepare_payload();
        http::async_write(socket, response,
                          [self = shared_from_this()](const auto& error, std::size_t) {
                              if (!error && self->request.keep_alive())
                                  self->read();
                          });
    }

    tcp::socket socket;
    const std::string& text;
    boost::beast::flat_buffer buffer;
    http::request<http::string_body> request;
    http::response<http::string_body> response;
};

class Server {
public:
    Server(boost::asio::io_context& io, std::string newText)
        : text(std::move(newText)), acceptor(io, {tcp::v4(), 0}) {
        accept();
    }

    unsigned short port() const { return acceptor.local_endpoint().port(); }

private:
    void accept() {
        acceptor.async_accept([this](const auto& error, tcp::socket socket) {
            if (!error)
                std::make_shared<Session>(std::move(socket), text)->read();
            accept();
        });
    }

    const std::string text;
    tcp::acceptor acceptor;
};

} // namespace

int main(int argc, char** argv) {
    boost::asio::io_context io(1);
    const Server server(io, argc > 1 ? argv[1] : "{}");
    std::cout << "listening on http://127.0.0.1:" << server.port() << std::endl;
    io.run();
}
