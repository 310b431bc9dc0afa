/// An HTTP client that can send invalid requests.
#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace test {

struct HttpResponse {
    int status = 0;                             ///< 0 if there was no response
    std::map<std::string, std::string> headers; ///< keyed by lower-case names
    std::string body;

    bool has(const std::string& header) const { return headers.count(header) != 0; }
};

void PrintTo(const HttpResponse& response, std::ostream* out);

/// A connection. Waits at most a minute for the server.
class HttpClient {
public:
    /// Connects to 127.0.0.1.
    /// @param receiveBuffer  the size of the system's buffer in bytes; 0 for the default
    explicit HttpClient(std::uint16_t newPort, int receiveBuffer = 0);
    /// Connects to another address.
    /// @param address  of IPv4 or IPv6, without brackets
    /// @throws std::system_error
    HttpClient(const std::string& address, std::uint16_t newPort, int receiveBuffer = 0);
    ~HttpClient();
    HttpClient(HttpClient&& other) noexcept;
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    /// Sends as much as the server accepts.
    void send(const std::string& bytes);
    void endSending();

    /// Sends a GET request with the correct Host.
    void get(const std::string& path, const std::vector<std::string>& headers = {});

    /// @return the next line without its line break; an empty string at the end
    std::string readLine();
    /// Skips lines that begin differently.
    /// @return the line, or an empty string at the end
    std::string readLineStartingWith(const std::string& beginning);
    std::string readToEnd();
    /// @return what has arrived, or arrives within some milliseconds; may be empty
    std::string readAvailable();
    /// Reads one response, or everything up to the end if it does not tell its length.
    HttpResponse response();

private:
    bool readMore();
    std::string readBody(const HttpResponse& response);

    const std::uint16_t port;
    int descriptor = -1;
    std::string unread;
};

using Headers = std::vector<std::string>; ///< "Name: value" each

/// Sends a request and reads the response. A Host in the headers replaces the correct one.
HttpResponse request(std::uint16_t port, const std::string& method, const std::string& path,
                     const std::string& body = "", const Headers& headers = {});
HttpResponse get(std::uint16_t port, const std::string& path, const Headers& headers = {});
HttpResponse put(std::uint16_t port, const std::string& key, const std::string& body);
HttpResponse post(std::uint16_t port, const std::string& body, const Headers& headers = {});

/// @return a request as JSON
std::string getMessage(const std::string& key);
std::string setMessage(const std::string& key, const std::string& text);
std::string addMessage(const std::string& name, const std::string& path);

/// @return the text in {"error": {"text": …}}
std::string errorOf(const std::string& body);

} // namespace test
