/// What the client does when connections fail, and when responses are wrong.
#include "service/client/ScriptedServer.hpp"
#include "service/client/ServedConfiguration.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

namespace {

using connector::service::HttpClient;
using connector::service::HttpClientOptions;
using connector::service::ServiceError;
using test::errorOf;
using test::ScriptedServer;
using testing::HasSubstr;
using testing::StartsWith;

using HttpClientConnection = test::ServedConfiguration;

constexpr char noOption[] =
    R"({"type":"connector/configuration/ConfigurationOptionResponse","message":{}})";

HttpClientOptions optionsFor(const ScriptedServer& server) {
    HttpClientOptions options;
    options.url = server.url();
    return options;
}

TEST_F(HttpClientConnection, FailsWithoutAService) {
    start();
    const HttpClientOptions client = clientOptions();
    stop();
    EXPECT_EQ("Cannot connect to " + client.url + ": No such file or directory",
              errorOf([&] { HttpClient(client).keys(); }).what());
}

TEST_F(HttpClientConnection, IsOpenedAgainAfterARestart) {
    configuration->set("net.port", 1).get();
    start();
    HttpClient client(clientOptions());
    EXPECT_TRUE(client.get("net.port"));
    stop();
    EXPECT_EQ(0u, errorOf([&] { client.get("net.port"); }).status());
    start();
    EXPECT_TRUE(client.get("net.port"));
    stop();
    start();
    client.set("net.port", 2); // without a failure in between
}

TEST(ScriptedService, IsAskedOnOneConnection) {
    ScriptedServer server([](ScriptedServer& self) {
        ScriptedServer::Client client = self.accept();
        for (int i = 0; i < 2; ++i) {
            EXPECT_THAT(client.readRequest(), StartsWith("POST /messages HTTP/1.1\r\n"));
            client.respond(noOption);
        }
    });
    HttpClient client(optionsFor(server));
    EXPECT_FALSE(client.get("a"));
    EXPECT_FALSE(client.get("b"));
}

TEST(ScriptedService, IsAskedAgainIfItHasClosedAnIdleConnection) {
    ScriptedServer server([](ScriptedServer& self) {
        {
            ScriptedServer::Client client = self.accept();
            client.readRequest();
            client.respond(noOption);
            client.readRequest(); // and closes without a response
        }
        ScriptedServer::Client client = self.accept();
        client.readRequest();
        client.respond(noOption);
    });
    HttpClient client(optionsFor(server));
    EXPECT_FALSE(client.get("a"));
    EXPECT_FALSE(client.get("b"));
}

TEST(ScriptedService, IsNotAskedAgainToChangeSomething) {
    ScriptedServer server([](ScriptedServer& self) {
        ScriptedServer::Client client = self.accept();
        client.readRequest();
        client.respond(noOption);
        EXPECT_THAT(client.readRequest(), StartsWith("PUT /options/b HTTP/1.1\r\n"));
    });
    HttpClient client(optionsFor(server));
    EXPECT_FALSE(client.get("a"));
    EXPECT_EQ("No response from " + server.url() + ": end of stream",
              errorOf([&] { client.set("b", 1); }).what());
}

TEST(ScriptedService, MayBeSilent) {
    ScriptedServer server([](ScriptedServer& self) {
        ScriptedServer::Client client = self.accept();
        client.readRequest();
        EXPECT_EQ("", client.readRequest()); // until the client gives up
    });
    HttpClientOptions options = optionsFor(server);
    options.request = std::chrono::milliseconds(20);
    HttpClient client(options);
    EXPECT_EQ("No response from " + server.url() + ": Connection timed out",
              errorOf([&] { client.get("a"); }).what());
}

/// The parser limits neither.
TEST(ScriptedService, MaySendEndlessExtensionsAndTrailersOfChunks) {
    for (const char* const beginning : {"1;", "0\r\n"}) {
        SCOPED_TRACE(beginning);
        ScriptedServer server([beginning](ScriptedServer& self) {
            ScriptedServer::Client client = self.accept();
            client.readRequest();
            client.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
            client.send(beginning + std::string(4 * 1024 * 1024, 'x'));
            EXPECT_EQ("", client.readRequest()); // until the client gives up
        });
        HttpClient client(optionsFor(server));
        EXPECT_EQ("No response from " + server.url() + ": buffer overflow",
                  errorOf([&] { client.get("a"); }).what());
    }
}

/// @return how a client fails to understand a response, without the URL
template <typename Ask>
std::string misunderstanding(const std::string& body, Ask ask) {
    ScriptedServer server([&body](ScriptedServer& self) {
        ScriptedServer::Client client = self.accept();
        client.readRequest();
        client.respond(body);
    });
    HttpClient client(optionsFor(server));
    const std::string text = errorOf([&] { ask(client); }).what();
    const std::string begin = "Response of " + server.url() + " is not understood: ";
    EXPECT_THAT(text, StartsWith(begin));
    return text.substr(std::min(begin.size(), text.size()));
}

std::string replyWith(const std::string& message,
                      const std::string& type = "ConfigurationOptionResponse") {
    return R"({"type":"connector/configuration/)" + type + R"(","message":)" + message + "}";
}

constexpr char otherOption[] = R"({"key":"b","source":"s","value":{"type":"int","value":1}})";

TEST(ScriptedService, MaySendWhatIsNotUnderstood) {
    const std::string bodies[] = {
        "",
        "x",
        "1",
        "[]",
        "{}",
        R"({"message":{}})",
        R"({"type":1,"message":{}})",
        replyWith("[]"),
        replyWith(R"({"key":"a"})"),
        replyWith(R"({"key":"a","source":"s","value":1})"),
        replyWith(R"({"key":1,"source":"s","value":{"type":"int","value":1}})"),
        replyWith("{\"key\":\"\xff\"}"),
        replyWith(R"({"key":"a","source":"s","value":{"type":"int","value":"x"}})"),
        replyWith(R"({"key":"a","source":"s","value":{"type":"int","value":99999999999}})"),
        replyWith(R"({"key":"a","source":"s","value":{"type":"none","value":1}})"),
    };
    for (const std::string& body : bodies) {
        SCOPED_TRACE(body);
        EXPECT_NE("", misunderstanding(body, [](HttpClient& client) { client.get("a"); }));
    }
}

TEST(ScriptedService, MayAnswerAnotherQuestion) {
    const std::string type = "it is a reply to something else";
    EXPECT_EQ(type, misunderstanding(replyWith("{}", "ConfigurationKeysResponse"),
                                     [](HttpClient& client) { client.get("a"); }));
    EXPECT_EQ(type, misunderstanding(replyWith(R"({"keys":[]})"),
                                     [](HttpClient& client) { client.keys(); }));
    const std::string key = "it has another option";
    EXPECT_EQ(
        key, misunderstanding(replyWith(otherOption), [](HttpClient& client) { client.get("a"); }));
    EXPECT_EQ(key, misunderstanding(otherOption, [](HttpClient& client) { client.set("a", 1); }));
    EXPECT_EQ(key,
              misunderstanding(R"({"key":"b"})", [](HttpClient& client) { client.reset("a"); }));
}

TEST(ScriptedService, IsNotBelievedToHaveChangedAnythingWithoutTheOption) {
    for (const char* const body : {"", "<html>", "{}"}) {
        SCOPED_TRACE(body);
        EXPECT_NE("", misunderstanding(body, [](HttpClient& client) { client.set("a", 1); }));
        EXPECT_NE("", misunderstanding(body, [](HttpClient& client) { client.reset("a"); }));
    }
}

TEST(ScriptedService, MaySendInterimResponses) {
    ScriptedServer server([](ScriptedServer& self) {
        ScriptedServer::Client client = self.accept();
        client.readRequest();
        client.send("HTTP/1.1 100 Continue\r\n\r\n"
                    "HTTP/1.1 103 Early Hints\r\nLink: </style.css>; rel=preload\r\n\r\n");
        client.respond(noOption);
        client.readRequest();
        client.respond(noOption);
    });
    HttpClient client(optionsFor(server));
    EXPECT_FALSE(client.get("a"));
    EXPECT_FALSE(client.get("b"));
}

TEST(ScriptedService, MayFailWithoutAProblemDocument) {
    ScriptedServer server([](ScriptedServer& self) {
        ScriptedServer::Client client = self.accept();
        client.readRequest();
        client.respond("<html>", "502 Bad Gateway");
        client.readRequest();
        client.respond("no such page", "404 Not Found");
    });
    HttpClient client(optionsFor(server));
    const ServiceError error = errorOf([&] { client.list(); });
    EXPECT_EQ(502u, error.status());
    EXPECT_EQ("Response of " + server.url() + ": 502 Bad Gateway", error.what());
    EXPECT_EQ(404u, errorOf([&] { client.reset("a"); }).status()); // not only an absent key
}

TEST(ScriptedService, MayNestDeeply) {
    const std::string deep(100000, '[');
    ScriptedServer server([&deep](ScriptedServer& self) {
        ScriptedServer::Client client = self.accept();
        client.readRequest();
        client.respond(deep);
    });
    HttpClient client(optionsFor(server));
    EXPECT_THAT(errorOf([&] { client.list(); }).what(), HasSubstr("64 levels of nesting"));
}

} // namespace
