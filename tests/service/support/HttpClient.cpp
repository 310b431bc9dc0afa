#include "service/support/HttpClient.hpp"

#include <Poco/JSON/Parser.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test {

namespace {

void check(int result) {
    if (result < 0)
        throw std::system_error(errno, std::generic_category());
}

std::string withoutCarriageReturn(std::string line) {
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

std::string inLowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

/// @param host  an address of IPv4 or IPv6
/// @return the length of the address
socklen_t fill(sockaddr_storage& address, const std::string& host, std::uint16_t port) {
    auto& ipv4 = reinterpret_cast<sockaddr_in&>(address);
    if (::inet_pton(AF_INET, host.c_str(), &ipv4.sin_addr) == 1) {
        ipv4.sin_family = AF_INET;
        ipv4.sin_port = htons(port);
        return sizeof ipv4;
    }
    auto& ipv6 = reinterpret_cast<sockaddr_in6&>(address);
    ::inet_pton(AF_INET6, host.c_str(), &ipv6.sin6_addr);
    ipv6.sin6_family = AF_INET6;
    ipv6.sin6_port = htons(port);
    return sizeof ipv6;
}

/// @param text  must not need escapes
std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

std::string envelope(const std::string& type, const std::string& message) {
    return R"({"type":"connector/configuration/)" + type + R"(","message":)" + message + "}";
}

} // namespace

void PrintTo(const HttpResponse& response, std::ostream* out) {
    *out << response.status << ' ' << response.body;
}

HttpClient::HttpClient(std::uint16_t newPort, int receiveBuffer)
    : HttpClient("127.0.0.1", newPort, receiveBuffer) {
}

HttpClient::HttpClient(const std::string& host, std::uint16_t newPort, int receiveBuffer)
    : port(newPort) {
    sockaddr_storage address{};
    const socklen_t length = fill(address, host, port);
    descriptor = ::socket(address.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    check(descriptor);
    if (receiveBuffer != 0)
        check(
            ::setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer));
    const timeval timeout{60, 0};
    check(::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout));
    check(::setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout));
    check(::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), length));
}

HttpClient::~HttpClient() {
    if (descriptor >= 0)
        ::close(descriptor);
}

HttpClient::HttpClient(HttpClient&& other) noexcept
    : port(other.port), descriptor(std::exchange(other.descriptor, -1)),
      unread(std::move(other.unread)) {
}

void HttpClient::send(const std::string& bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t sent =
            ::send(descriptor, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (sent < 0)
            return; // the server has closed the connection; the response tells why
        done += static_cast<std::size_t>(sent);
    }
}

void HttpClient::endSending() {
    ::shutdown(descriptor, SHUT_WR);
}

void HttpClient::get(const std::string& path, const std::vector<std::string>& headers) {
    std::string lines;
    for (const std::string& header : headers)
        lines += header + "\r\n";
    send("GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) + "\r\n" + lines +
         "\r\n");
}

std::string HttpClient::readLine() {
    std::size_t end;
    while ((end = unread.find('\n')) == unread.npos) {
        if (!readMore())
            return std::exchange(unread, {});
    }
    const std::string line = unread.substr(0, end);
    unread.erase(0, end + 1);
    return withoutCarriageReturn(line);
}

std::string HttpClient::readLineStartingWith(const std::string& beginning) {
    for (;;) {
        const std::string line = readLine();
        if (line.compare(0, beginning.size(), beginning) == 0)
            return line;
        if (line.empty() && unread.empty() && !readMore())
            return {};
    }
}

std::string HttpClient::readToEnd() {
    while (readMore()) {
    }
    return std::exchange(unread, {});
}

HttpResponse HttpClient::response() {
    HttpResponse response;
    do { // skip 100 Continue
        response = HttpResponse();
        const std::string status = readLine();
        if (status.compare(0, 9, "HTTP/1.1 ") != 0)
            return response;
        response.status = std::stoi(status.substr(9));
        for (std::string line; !(line = readLine()).empty();)
            response.headers[inLowerCase(line.substr(0, line.find(':')))] =
                line.substr(std::min(line.find(':') + 2, line.size()));
    } while (response.status == 100);
    response.body = readBody(response);
    return response;
}

std::string HttpClient::readBody(const HttpResponse& response) {
    if (!response.has("content-length"))
        return readToEnd();
    const std::size_t length = std::stoul(response.headers.at("content-length"));
    while (unread.size() < length && readMore()) {
    }
    const std::string body = unread.substr(0, length);
    unread.erase(0, body.size());
    return body;
}

std::string HttpClient::readAvailable() {
    pollfd waiting{descriptor, POLLIN, 0};
    ::poll(&waiting, 1, 5);
    char bytes[16384];
    const ssize_t count = ::recv(descriptor, bytes, sizeof bytes, MSG_DONTWAIT);
    return std::string(bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
}

/// @return false if the connection is closed
bool HttpClient::readMore() {
    char bytes[16384];
    const ssize_t count = ::recv(descriptor, bytes, sizeof bytes, 0);
    if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
        throw std::runtime_error("The server sends nothing");
    if (count <= 0)
        return false;
    unread.append(bytes, static_cast<std::size_t>(count));
    return true;
}

HttpResponse request(std::uint16_t port, const std::string& method, const std::string& path,
                     const std::string& body, const Headers& headers) {
    std::string text = method + ' ' + path + " HTTP/1.1\r\n";
    bool hasHost = false;
    for (const std::string& header : headers) {
        hasHost = hasHost || header.compare(0, 5, "Host:") == 0;
        text += header + "\r\n";
    }
    if (!hasHost)
        text += "Host: 127.0.0.1:" + std::to_string(port) + "\r\n";
    if (method == "POST" || method == "PUT")
        text += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    HttpClient client(port);
    client.send(text + "Connection: close\r\n\r\n" + body);
    HttpResponse response = client.response();
    if (method == "HEAD")
        response.body = client.readToEnd(); // whatever is there is a fault
    return response;
}

HttpResponse get(std::uint16_t port, const std::string& path, const Headers& headers) {
    return request(port, "GET", path, "", headers);
}

HttpResponse put(std::uint16_t port, const std::string& key, const std::string& body) {
    return request(port, "PUT", "/options/" + key, body, {"Content-Type: application/json"});
}

HttpResponse post(std::uint16_t port, const std::string& body, const Headers& headers) {
    return request(port, "POST", "/messages", body, headers);
}

std::string getMessage(const std::string& key) {
    return envelope("ConfigurationGet", R"({"key":)" + quoted(key) + "}");
}

std::string setMessage(const std::string& key, const std::string& text) {
    return envelope("ConfigurationSet", R"({"key":)" + quoted(key) +
                                            R"(,"value":{"type":"string","value":)" + quoted(text) +
                                            "}}");
}

std::string addMessage(const std::string& name, const std::string& path) {
    return envelope("AddPropertyFileSource",
                    R"({"name":)" + quoted(name) + R"(,"path":)" + quoted(path) + "}");
}

std::string errorOf(const std::string& body) {
    Poco::JSON::Parser parser;
    return parser.parse(body)
        .extract<Poco::JSON::Object::Ptr>()
        ->getObject("error")
        ->getValue<std::string>("text");
}

} // namespace test
