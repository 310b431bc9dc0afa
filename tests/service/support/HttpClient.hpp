/// A client that can do everything wrong.
#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace test {

struct HttpAnswer {
    int status = 0;                             ///< 0 if there was no answer
    std::map<std::string, std::string> headers; ///< by their names in lower case
    std::string body;

    bool has(const std::string& header) const { return headers.count(header) != 0; }
};

void PrintTo(const HttpAnswer& answer, std::ostream* out);

/// @param bytes  all that came
HttpAnswer parseAnswer(const std::string& bytes);

/// A connection. What does not come within a minute is a failure.
class HttpClient {
public:
    /// Connects to 127.0.0.1.
    /// @param receiveBuffer  the size of the system's buffer; 0 for what is usual
    explicit HttpClient(std::uint16_t newPort, int receiveBuffer = 0);
    /// Connects elsewhere.
    /// @param address  of IPv4 or IPv6, without brackets
    /// @throws std::system_error
    HttpClient(const std::string& address, std::uint16_t newPort, int receiveBuffer = 0);
    ~HttpClient();
    HttpClient(HttpClient&& other) noexcept;
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;

    /// Sends as much as the server takes.
    void send(const std::string& bytes);
    void endSending();

    /// Sends GET with the right Host.
    void get(const std::string& path, const std::vector<std::string>& headers = {});

    /// @return the next line without its end; nothing at the end
    std::string readLine();
    /// Reads until a line begins like that. @return the line, or nothing at the end
    std::string readLineBeginning(const std::string& beginning);
    std::string readToTheEnd();
    /// @return what comes within some milliseconds; nothing if that is nothing
    std::string readWhatComesSoon();
    HttpAnswer answer() { return parseAnswer(readToTheEnd()); }

private:
    bool readMore();

    const std::uint16_t port;
    int descriptor = -1;
    std::string unread;
};

using Headers = std::vector<std::string>; ///< "Name: value" each

/// One request and its answer. A Host among the headers takes the place of the right one.
HttpAnswer request(std::uint16_t port, const std::string& method, const std::string& path,
                   const std::string& body = "", const Headers& headers = {});
HttpAnswer get(std::uint16_t port, const std::string& path, const Headers& headers = {});
HttpAnswer post(std::uint16_t port, const std::string& body, const Headers& headers = {});

/// @return the text of a message that is read by a service
std::string getMessage(const std::string& key);
std::string setMessage(const std::string& key, const std::string& text);
std::string addMessage(const std::string& name, const std::string& path);

/// @return the text in {"error": {"text": …}}
std::string errorOf(const std::string& body);

} // namespace test
