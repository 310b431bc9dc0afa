/// A server that does what a test tells it, right or wrong.
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/streambuf.hpp>
#include <boost/asio/write.hpp>

#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace test {

/// Runs a script on a thread of its own. The script must end; the destructor waits for it.
class ScriptedServer {
public:
    using Tcp = boost::asio::ip::tcp;

    /// A connection that the script has accepted.
    class Client {
    public:
        explicit Client(Tcp::socket newSocket) : socket(std::move(newSocket)) {}

        /// Reads a request with its body.
        /// @return its head; empty if the client has closed the connection
        std::string readRequest() {
            boost::system::error_code error;
            const std::size_t size = boost::asio::read_until(socket, buffer, "\r\n\r\n", error);
            const std::string head = take(size);
            const std::size_t length = head.find("Content-Length: ");
            if (length != head.npos) {
                const std::size_t body = std::stoul(head.substr(length + 16));
                while (buffer.size() < body && !error)
                    boost::asio::read(socket, buffer, boost::asio::transfer_at_least(1), error);
                take(body);
            }
            return head;
        }
        void send(const std::string& text) {
            boost::system::error_code ignored;
            boost::asio::write(socket, boost::asio::buffer(text), ignored);
        }
        void respond(const std::string& body, const std::string& status = "200 OK") {
            send("HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) +
                 "\r\n\r\n" + body);
        }

    private:
        std::string take(std::size_t size) {
            std::string text(size, '\0');
            buffer.sgetn(text.data(), static_cast<std::streamsize>(size));
            return text;
        }

        Tcp::socket socket;
        boost::asio::streambuf buffer;
    };

    explicit ScriptedServer(std::function<void(ScriptedServer&)> script)
        : acceptor(context, {boost::asio::ip::make_address("127.0.0.1"), 0}),
          thread([this, script = std::move(script)] { script(*this); }) {}
    ~ScriptedServer() { thread.join(); }
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    Client accept() { return Client(acceptor.accept()); }

    std::string url() const {
        return "http://127.0.0.1:" + std::to_string(acceptor.local_endpoint().port());
    }

private:
    boost::asio::io_context context;
    Tcp::acceptor acceptor;
    std::thread thread; // last, because it uses the other members
};

} // namespace test
