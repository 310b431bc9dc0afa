/// Requests that are meant badly, or went wrong on the way.
#include "service/support/HttpClient.hpp"
#include "service/support/Mutations.hpp"
#include "service/support/ServerProcess.hpp"
#include <connector/service/messages/RequestText.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>

namespace {

using connector::service::longestRequest;
using connector::service::readRequest;
using test::errorOf;
using test::get;
using test::getMessage;
using test::HttpAnswer;
using test::HttpClient;
using test::post;
using test::ServerProcess;

/// A server that must serve the next request whatever came before.
class HostileRequests : public testing::Test {
protected:
    ~HostileRequests() override {
        EXPECT_EQ("[]\n", get(port(), "/options").body);
        EXPECT_EQ((test::Result{0, "", ""}), server.stop());
    }

    std::uint16_t port() const { return server.port(); }

    /// @return a head with the right host, and these lines
    std::string head(const std::string& lines = "") const {
        return "POST /messages HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port()) + "\r\n" +
               lines + "\r\n";
    }

    HttpAnswer send(const std::string& bytes, bool end = false) const {
        HttpClient client(port());
        client.send(bytes);
        if (end)
            client.endSending();
        return client.answer();
    }

    void expectAnswer(int status, const std::string& text, const HttpAnswer& answer) const {
        EXPECT_EQ(status, answer.status);
        EXPECT_EQ(text, answer.body.empty() ? "nothing" : errorOf(answer.body));
    }

    ServerProcess server;
};

std::string chunk(const std::string& bytes) {
    char size[32];
    std::snprintf(size, sizeof size, "%zx\r\n", bytes.size());
    return size + bytes + "\r\n";
}

const char chunked[] = "Transfer-Encoding: chunked\r\n";

TEST_F(HostileRequests, BodiesThatAreMutations_AreAnsweredWithJson) {
    test::Mutations mutations(2);
    for (int i = 0; i < 300; ++i) {
        const std::string body = mutations.next();
        const HttpAnswer answer = post(port(), body);
        EXPECT_NO_THROW(readRequest(answer.body)) << body << "\n" << answer.body;
        EXPECT_TRUE(answer.status == 200 || answer.status == 400 || answer.status == 403 ||
                    answer.status == 422)
            << answer.status << " for " << body;
    }
}

TEST_F(HostileRequests, AnyBytes_GetAnAnswerOrAnEnd) {
    std::mt19937 random(3);
    for (int i = 0; i < 300; ++i) {
        std::string bytes(random() % 400, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        const HttpAnswer answer = send(bytes, true);
        EXPECT_TRUE(answer.status == 0 || answer.status / 100 == 4) << answer.status;
    }
}

TEST_F(HostileRequests, HeadsThatAreMutations_GetAnAnswerOrAnEnd) {
    std::mt19937 random(4);
    const std::string original = head("Content-Length: 2\r\nExpect: 100-continue\r\n") + "{}";
    for (int i = 0; i < 500; ++i) {
        std::string bytes = original;
        for (int count = 0; count < 3; ++count)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        const HttpAnswer answer = send(bytes, true);
        EXPECT_TRUE(answer.status == 0 || answer.status / 100 == 4) << answer.status;
    }
}

TEST_F(HostileRequests, ABodyOfTheLongestLength_IsServed) {
    std::string body = getMessage("a");
    body.append(longestRequest - body.size(), ' ');
    EXPECT_EQ(200, post(port(), body).status);
    EXPECT_EQ(200, send(head(chunked) + chunk(body) + "0\r\n\r\n").status);
}

TEST_F(HostileRequests, ABodyThatIsTooLong_Is413) {
    const std::string tooLong = "A request is at most 1 MiB long";
    expectAnswer(413, tooLong, post(port(), std::string(longestRequest + 1, ' ')));
    expectAnswer(413, tooLong, post(port(), std::string(5 * longestRequest, '[')));
    expectAnswer(413, tooLong,
                 send(head(chunked) + chunk(std::string(longestRequest, ' ')) + chunk(" ")));
}

TEST_F(HostileRequests, ALengthThatIsTooMuch_Is413BeforeABodyComes) {
    const std::string tooLong = "A request is at most 1 MiB long";
    for (const char* length : {"1048577", "99999999999999999999999999"}) {
        SCOPED_TRACE(length);
        expectAnswer(
            413, tooLong,
            send(head(std::string("Expect: 100-continue\r\nContent-Length: ") + length + "\r\n")));
    }
    for (const char* size : {"100001", "ffffffffffffffffffff"}) {
        SCOPED_TRACE(size);
        expectAnswer(413, tooLong, send(head(chunked) + size + "\r\n"));
    }
}

TEST_F(HostileRequests, AMegabyteOfNothing_Is400) {
    for (const char nothing : {' ', '\0', '\n'})
        EXPECT_EQ(400, post(port(), std::string(longestRequest, nothing)).status);
}

TEST_F(HostileRequests, AnyNesting_Is400) {
    EXPECT_EQ(400, post(port(), "{\"a\":" + std::string(1000000, '[')).status);
    EXPECT_EQ(400, post(port(), "{\"a\":" + std::string(65, '{')).status);
    const HttpAnswer answer =
        post(port(), "{\"id\":7,\"a\":" + std::string(65, '[') + std::string(65, ']') + "}");
    EXPECT_EQ(400, answer.status);
    EXPECT_EQ(R"({"id":7,"error":{"type":"std::invalid_argument",)"
              R"("text":"A request has at most 64 levels of nesting"}})"
              "\n",
              answer.body);
}

TEST_F(HostileRequests, ALengthThatIsNone_Is400) {
    for (const char* length : {"", "x", "-1", "+2", "0x2", "2, 2", "2.0", "1 1"}) {
        SCOPED_TRACE(length);
        expectAnswer(400, "Content-Length is no number",
                     send(head(std::string("Content-Length: ") + length + "\r\n") + "{}"));
    }
}

TEST_F(HostileRequests, ALengthThatIsToldTwice_Is400) {
    const std::string twice = "Length of the body is told twice";
    expectAnswer(400, twice, send(head("Content-Length: 2\r\nContent-Length: 2\r\n") + "{}"));
    expectAnswer(400, twice,
                 send(head(std::string("Content-Length: 2\r\n") + chunked) + chunk("{}")));
}

TEST_F(HostileRequests, AnotherEncoding_Is400) {
    for (const char* encoding : {"gzip", "gzip, chunked", "identity", ""})
        expectAnswer(
            400, "Transfer encoding is not chunked",
            send(head(std::string("Transfer-Encoding: ") + encoding + "\r\n") + "0\r\n\r\n"));
}

TEST_F(HostileRequests, Chunks_MakeOneBody) {
    const std::string body = getMessage("a");
    std::string bytes = head(chunked);
    for (const char byte : body)
        bytes += chunk(std::string(1, byte));
    EXPECT_EQ(200, send(bytes + "0\r\n\r\n").status);
    EXPECT_EQ(200, send(head(chunked) + "00" + chunk(body) + "0;a=b\r\nTrailer: x\r\n\r\n").status);
}

TEST_F(HostileRequests, ChunksThatAreNone_Are400) {
    const struct {
        int line;
        const char* bytes;
        const char* text;
    } rows[] = {
        {__LINE__, "x\r\n", "Chunk without a size"},
        {__LINE__, "\r\n", "Chunk without a size"},
        {__LINE__, "-1\r\n", "Chunk without a size"},
        {__LINE__, "0x2\r\n{}\r\n", "Chunk without a size"},
        {__LINE__, "2\r\n{}x\r\n0\r\n\r\n", "Chunk is longer than its size"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        expectAnswer(400, row.text, send(head(chunked) + row.bytes));
    }
    expectAnswer(400, "Line between chunks is too long",
                 send(head(chunked) + "2;" + std::string(20000, 'x')));
    std::string trailers;
    for (int i = 0; i < 200; ++i)
        trailers += "a: b\r\n";
    expectAnswer(400, "Too much behind the body", send(head(chunked) + "0\r\n" + trailers));
}

TEST_F(HostileRequests, HalfARequest_Is400AndNotExecuted) {
    const std::string body = getMessage("a");
    const std::string early = "Request ends too early";
    expectAnswer(400, early, send("POST /mess", true));
    expectAnswer(400, early, send(head("Content-Length: 500\r\n") + body, true));
    expectAnswer(400, early, send(head(chunked) + chunk(body), true));
    expectAnswer(400, early, send(head(chunked) + chunk(body) + "0\r\n", true));
}

TEST_F(HostileRequests, AClientThatSaysNothing_GetsNothing) {
    EXPECT_EQ(0, send("", true).status);
}

TEST_F(HostileRequests, AHeadThatIsTooLong_Is400) {
    expectAnswer(400, "Head of the request is too long", send("GET /" + std::string(100000, 'x')));
    std::string headers;
    for (int i = 0; i < 200; ++i)
        headers += "a" + std::to_string(i) + ": b\r\n";
    expectAnswer(400, "Not an HTTP request", send(head(headers)));
}

TEST_F(HostileRequests, EmptyLinesBeforeARequest_AreSkipped) {
    for (const char* lines : {"\r\n", "\n", "\r\n\r\n", "\n\r\n\n"}) {
        HttpClient client(port());
        client.send(lines);
        client.get("/options");
        EXPECT_EQ(200, client.answer().status);
    }
    expectAnswer(400, "Head of the request is too long", send(std::string(100000, '\n')));
    expectAnswer(400, "Request ends too early", send("\r\n", true));
}

TEST_F(HostileRequests, AHeadThatIsOdd_Is400) {
    const std::string host = "Host: 127.0.0.1:" + std::to_string(port()) + "\r\n";
    const std::string get = "GET /options HTTP/1.1\r\n";
    EXPECT_EQ(200, send(get + host + "a:\tb\xff\r\nc:\r\n\r\n").status);
    EXPECT_EQ(200, send("GET /options HTTP/1.1\n" + host + "\n").status);
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

TEST_F(HostileRequests, AnotherProtocol_Is400) {
    expectAnswer(400, "Neither HTTP/1.0 nor HTTP/1.1", send("GET / HTTP/2.0\r\n\r\n"));
    EXPECT_EQ(400, send("nonsense\r\n\r\n").status);
    EXPECT_EQ(400, send(std::string("\x16\x03\x01\x02\x00\x01\n\n", 8)).status);
}

TEST_F(HostileRequests, AClientThatWaitsToBeAsked_IsAsked) {
    HttpClient client(port());
    const std::string body = getMessage("a");
    client.send(
        head("Expect: 100-continue\r\nContent-Length: " + std::to_string(body.size()) + "\r\n"));
    EXPECT_EQ("HTTP/1.1 100 Continue", client.readLine());
    EXPECT_EQ("", client.readLine());
    client.send(body);
    EXPECT_EQ(200, client.answer().status);
}

TEST_F(HostileRequests, ARequestBehindTheFirst_IsNotServed) {
    const std::string request =
        "GET /options HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port()) + "\r\n\r\n";
    HttpClient client(port());
    client.send(request + request);
    const std::string bytes = client.readToTheEnd();
    EXPECT_EQ(bytes.find("HTTP/1.1 "), bytes.rfind("HTTP/1.1 "));
}

} // namespace
