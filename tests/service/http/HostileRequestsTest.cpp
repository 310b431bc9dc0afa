/// Malicious and corrupted requests.
#include "service/support/HttpClient.hpp"
#include "service/support/Mutations.hpp"
#include "service/support/ServerProcess.hpp"

#include <connector/service/messages/ParsedRequest.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>

namespace {

using connector::service::maxRequestSize;
using connector::service::parseRequest;
using test::errorOf;
using test::get;
using test::getMessage;
using test::HttpClient;
using test::HttpResponse;
using test::post;
using test::ServerProcess;

/// Checks after each test that the server still works.
class HostileRequests : public testing::Test {
protected:
    ~HostileRequests() override {
        EXPECT_EQ("[]\n", get(port(), "/options").body);
        EXPECT_EQ((test::Result{0, "", ""}), server.stop());
    }

    std::uint16_t port() const { return server.port(); }

    /// @return the head of a POST request with the correct host and these header lines
    std::string head(const std::string& lines = "") const {
        return "POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port()) + "\r\n" +
               lines + "\r\n";
    }

    HttpResponse send(const std::string& bytes, bool end = false) const {
        HttpClient client(port());
        client.send(bytes);
        if (end)
            client.endSending();
        return client.response();
    }

    void expectAnswer(int status, const std::string& text, const HttpResponse& response) const {
        EXPECT_EQ(status, response.status);
        EXPECT_EQ(text, response.body.empty() ? "no body" : errorOf(response.body));
    }

    ServerProcess server;
};

std::string chunk(const std::string& bytes) {
    char size[32];
    std::snprintf(size, sizeof size, "%zx\r\n", bytes.size());
    return size + bytes + "\r\n";
}

const char chunked[] = "Transfer-Encoding: chunked\r\n";

TEST_F(HostileRequests, MutatedBodiesGetJsonResponses) {
    test::Mutations mutations(2);
    for (int i = 0; i < 300; ++i) {
        const std::string body = mutations.next();
        const HttpResponse response = post(port(), body);
        EXPECT_NO_THROW(parseRequest(response.body)) << body << "\n" << response.body;
        EXPECT_TRUE(response.status == 200 || response.status == 400 || response.status == 403 ||
                    response.status == 422)
            << response.status << " for " << body;
    }
}

TEST_F(HostileRequests, RandomBytesGetAnErrorOrNoResponse) {
    std::mt19937 random(3);
    for (int i = 0; i < 300; ++i) {
        std::string bytes(random() % 400, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        const HttpResponse response = send(bytes, true);
        EXPECT_TRUE(response.status == 0 || response.status / 100 == 4) << response.status;
    }
}

TEST_F(HostileRequests, MutatedHeadsGetAnErrorOrNoResponse) {
    std::mt19937 random(4);
    const std::string original = head("Content-Length: 2\r\nExpect: 100-continue\r\n") + "{}";
    for (int i = 0; i < 500; ++i) {
        std::string bytes = original;
        for (int count = 0; count < 3; ++count)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        const HttpResponse response = send(bytes, true);
        EXPECT_TRUE(response.status == 0 || response.status / 100 == 4) << response.status;
    }
}

TEST_F(HostileRequests, ABodyOfTheMaximumSizeIsServed) {
    std::string body = getMessage("a");
    body.append(maxRequestSize - body.size(), ' ');
    EXPECT_EQ(200, post(port(), body).status);
    EXPECT_EQ(200, send(head(chunked) + chunk(body) + "0\r\n\r\n").status);
}

TEST_F(HostileRequests, ABodyThatIsTooLongGets413) {
    const std::string tooLong = "A request is at most 1 MiB long";
    expectAnswer(413, tooLong, post(port(), std::string(maxRequestSize + 1, ' ')));
    expectAnswer(413, tooLong, post(port(), std::string(5 * maxRequestSize, '[')));
    expectAnswer(413, tooLong,
                 send(head(chunked) + chunk(std::string(maxRequestSize, ' ')) + chunk(" ")));
}

TEST_F(HostileRequests, ALengthThatIsTooLargeGets413BeforeTheBodyArrives) {
    const std::string tooLong = "A request is at most 1 MiB long";
    for (const char* length : {"1048577", "18446744073709551615"}) {
        SCOPED_TRACE(length);
        expectAnswer(
            413, tooLong,
            send(head(std::string("Expect: 100-continue\r\nContent-Length: ") + length + "\r\n")));
    }
    for (const char* size : {"100001", "ffffffffffffff"}) {
        SCOPED_TRACE(size);
        expectAnswer(413, tooLong, send(head(chunked) + size + "\r\n"));
    }
}

TEST_F(HostileRequests, AMegabyteOfBlanksGets400) {
    for (const char nothing : {' ', '\0', '\n'})
        EXPECT_EQ(400, post(port(), std::string(maxRequestSize, nothing)).status);
}

TEST_F(HostileRequests, DeepNestingGets400) {
    EXPECT_EQ(400, post(port(), "{\"a\":" + std::string(1000000, '[')).status);
    EXPECT_EQ(400, post(port(), "{\"a\":" + std::string(65, '{')).status);
    const HttpResponse response =
        post(port(), "{\"id\":7,\"a\":" + std::string(65, '[') + std::string(65, ']') + "}");
    EXPECT_EQ(400, response.status);
    EXPECT_EQ(R"({"id":7,"error":{"type":"std::invalid_argument",)"
              R"("text":"A request has at most 64 levels of nesting"},"type":"about:blank",)"
              R"("title":"Bad Request","status":400,)"
              R"("detail":"A request has at most 64 levels of nesting"})"
              "\n",
              response.body);
}

/// @return a request of 1 MiB with a member that holds many empty objects
std::string manyObjects(const std::string& member) {
    std::string body =
        R"({"type":"connector/configuration/ConfigurationGet","message":{"key":"a",)" + member +
        ":[{}";
    while (body.size() < maxRequestSize - 10)
        body += ",{}";
    return body + "]}}";
}

TEST_F(HostileRequests, TooManyElementsGet413) {
    expectAnswer(413, "A request has too many elements: they would take more than 4 MiB of memory",
                 post(port(), manyObjects("\"source\"")));
}

TEST_F(HostileRequests, ElementsThatNobodyReadsAreIgnored) {
    EXPECT_EQ(200, post(port(), manyObjects("\"x\"")).status);
    EXPECT_EQ(400, post(port(), manyObjects("\"x\"") + "x").status);
}

TEST_F(HostileRequests, AnInvalidContentLengthGets400) {
    for (const char* length :
         {"", "x", "-1", "+2", "0x2", "2, 2", "2.0", "1 1", "18446744073709551616"}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(400, send(head(std::string("Content-Length: ") + length + "\r\n") + "{}").status);
    }
}

TEST_F(HostileRequests, TwoLengthsGet400) {
    const std::string length = "Content-Length: 2\r\n";
    EXPECT_EQ(400, send(head(length + length) + "{}").status);
    EXPECT_EQ(400, send(head(length + chunked) + chunk("{}")).status);
    EXPECT_EQ(400, send(head(chunked + length) + chunk("{}")).status);
    EXPECT_EQ(400, send(head(std::string(chunked) + chunked) + chunk("{}")).status);
}

/// Each of these encodings hides a second request from one of two readers.
TEST_F(HostileRequests, OtherTransferEncodingsGet400) {
    for (const char* encoding : {"gzip", "gzip, chunked", "chunked, gzip", "chunked, chunked",
                                 "identity", "xchunked", "chunkedx", ""})
        expectAnswer(
            400, "Transfer encoding is not chunked",
            send(head(std::string("Transfer-Encoding: ") + encoding + "\r\n") + "0\r\n\r\n"));
    expectAnswer(400, "Transfer encoding is not chunked",
                 send("POST /messages HTTP/1.0\r\nHost: x\r\n" + std::string(chunked) + "\r\n"));
}

TEST_F(HostileRequests, EncodedWordsAreNotDecoded) {
    EXPECT_EQ(400, send(head("Content-Length: =?utf-8?q?2?=\r\n") + "{}").status);
    EXPECT_EQ(400, send(head("Authorization: =?utf-8?q?Bearer_x?=\r\n")).status);
    EXPECT_EQ(400, send(head("X: a=?b\r\n")).status);
}

TEST_F(HostileRequests, TrailersAreNoHeaders) {
    const std::string get = getMessage("a");
    EXPECT_EQ(200, send(head(chunked) + chunk(get) + "0\r\nHost: evil.example\r\n" +
                        "Connection: close\r\n\r\n")
                       .status);
}

TEST_F(HostileRequests, ChunksAreCombinedIntoOneBody) {
    const std::string body = getMessage("a");
    std::string bytes = head(chunked);
    for (const char byte : body)
        bytes += chunk(std::string(1, byte));
    EXPECT_EQ(200, send(bytes + "0\r\n\r\n").status);
    EXPECT_EQ(200, send(head(chunked) + "00" + chunk(body) + "0;a=b\r\nTrailer: x\r\n\r\n").status);
}

TEST_F(HostileRequests, InvalidChunksGet400) {
    for (const char* bytes : {"x\r\n", "\r\n", "-1\r\n", "0x2\r\n\r\n", "5 6\r\n{}   \r\n",
                              "2\r\n{}x\r\n0\r\n\r\n", "10000000000000000\r\n"}) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(400, send(head(chunked) + bytes).status);
    }
    EXPECT_EQ(413, send(head(chunked) + "fffffffff\r\n").status);
    expectAnswer(400, "Line between chunks is too long",
                 send(head(chunked) + "2;" + std::string(20000, 'x')));
    expectAnswer(400, "Line between chunks is too long",
                 send(head(chunked) + "0\r\n" + std::string(20000, 'x')));
}

TEST_F(HostileRequests, ManyChunkExtensionsGet400) {
    std::string request = head("Transfer-Encoding: chunked\r\n");
    for (int i = 0; i < 100; ++i)
        request += "1;" + std::string(100, 'x') + "\r\n \r\n";
    expectAnswer(400, "Extensions of the chunks are too long", send(request + "0\r\n\r\n"));
}

TEST_F(HostileRequests, AnIncompleteRequestGets400AndIsNotExecuted) {
    const std::string body = getMessage("a");
    const std::string early = "Request ends too early";
    expectAnswer(400, early, send("POST /mess", true));
    expectAnswer(400, early, send(head("Content-Length: 500\r\n") + body, true));
    expectAnswer(400, early, send(head(chunked) + chunk(body), true));
    expectAnswer(400, early, send(head(chunked) + chunk(body) + "0\r\n", true));
}

TEST_F(HostileRequests, AClientThatSendsNothingGetsNothing) {
    EXPECT_EQ(0, send("", true).status);
}

TEST_F(HostileRequests, AHeadThatIsTooLongGets431) {
    const std::string tooLong = "Head of the request is longer than 32 KiB";
    expectAnswer(431, tooLong, send("GET /" + std::string(100000, 'x')));
    std::string headers;
    for (int i = 0; i < 5000; ++i)
        headers += "a" + std::to_string(i) + ": b\r\n";
    expectAnswer(431, tooLong, send(head(headers)));
}

TEST_F(HostileRequests, EmptyLinesBeforeARequestAreSkipped) {
    for (const char* lines : {"\r\n", "\r\n\r\n"}) {
        HttpClient client(port());
        client.send(lines);
        client.get("/options");
        EXPECT_EQ(200, client.response().status);
    }
    std::string lines;
    for (int i = 0; i < 50000; ++i)
        lines += "\r\n";
    EXPECT_EQ(431, send(lines).status);
    expectAnswer(400, "Request ends too early", send("\r\nG", true));
}

TEST_F(HostileRequests, AMalformedHeadGets400) {
    const std::string host = "Host: 127.0.0.1:" + std::to_string(port()) + "\r\n";
    const std::string get = "GET /options HTTP/1.1\r\n";
    EXPECT_EQ(200, send(get + host + "a:\tb\xff\r\nc:\r\n\r\n").status);
    const struct {
        int line;
        std::string head;
    } rows[] = {
        {__LINE__, get + host + std::string("a: b\0c\r\n", 8)},
        {__LINE__, get + host + std::string("a\0: b\r\n", 7)},
        {__LINE__, std::string("GET /opt\0ions HTTP/1.1\r\n", 24) + host},
        {__LINE__, get + host + "a: b\x01\r\n"},
        {__LINE__, get + host + "a: b\x7f\r\n"},
        {__LINE__, get + host + "a: b\rc: d\r\n"},
        {__LINE__, get + host + "a: b\r\r\n"},
        {__LINE__, "GET /options HTTP/1.1\n" + host},
        {__LINE__, get + host + "a: b\n"},
        {__LINE__, get + host + "a\r\n"},
        {__LINE__, get + host + "a b\r\n"},
        {__LINE__, get + host + ": b\r\n"},
        {__LINE__, get + host + "a : b\r\n"},
        {__LINE__, get + host + "a: b\r\n c\r\n"},
        {__LINE__, get + host + "a: b\r\n\tc: d\r\n"},
        {__LINE__, get + " " + host},
        {__LINE__, " " + get + host},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        expectAnswer(400, "Not an HTTP request", send(row.head + "\r\n"));
    }
}

TEST_F(HostileRequests, OtherProtocolsGet400) {
    expectAnswer(400, "Neither HTTP/1.0 nor HTTP/1.1", send("GET / HTTP/2.0\r\n\r\n"));
    expectAnswer(400, "Neither HTTP/1.0 nor HTTP/1.1", send("GET / HTTP/1.2\r\n\r\n"));
    EXPECT_EQ(400, send("GET /options HTTP/1.1 junk\r\n\r\n").status);
    EXPECT_EQ(400, send("nonsense\r\n\r\n").status);
    EXPECT_EQ(400, send(std::string("\x16\x03\x01\x02\x00\x01\n\n", 8)).status);
}

TEST_F(HostileRequests, AClientThatExpects100ContinueGetsIt) {
    HttpClient client(port());
    const std::string body = getMessage("a");
    client.send(
        head("Expect: 100-continue\r\nContent-Length: " + std::to_string(body.size()) + "\r\n"));
    EXPECT_EQ("HTTP/1.1 100 Continue", client.readLine());
    EXPECT_EQ("", client.readLine());
    client.send(body);
    EXPECT_EQ(200, client.response().status);
}

TEST_F(HostileRequests, ARequestBehindOneThatIsRefusedIsNotServed) {
    const std::string second =
        "GET /options HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port()) + "\r\n\r\n";
    for (const std::string& first :
         {head("Content-Length: 1, 1\r\n"), head("Transfer-Encoding: gzip\r\n"),
          std::string("nonsense\r\n\r\n")}) {
        SCOPED_TRACE(first);
        HttpClient client(port());
        client.send(first + second);
        const std::string bytes = client.readToEnd();
        EXPECT_EQ(0u, bytes.find("HTTP/1.1 400 "));
        EXPECT_EQ(0u, bytes.rfind("HTTP/1.1 "));
    }
}

} // namespace
