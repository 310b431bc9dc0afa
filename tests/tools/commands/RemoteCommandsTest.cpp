/// The commands on a running service.
#include "service/client/ScriptedServer.hpp"
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::usageError;

using Arguments = std::vector<std::string>;

std::string urlOf(const test::ServerProcess& server) {
    return "http://" + server.host() + ':' + std::to_string(server.port());
}

Arguments joined(Arguments first, const Arguments& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class RemoteCommands : public testing::Test {
protected:
    Arguments remotely(const Arguments& command) const {
        return joined({"--url", urlOf(server)}, command);
    }

    const Arguments sources{"-s", "net.port:uint=80",        "-s", "net.name:ustring=gr\u00fcn",
                            "-s", "net.list:intArray=[1,2]", "-d", "net.port=1",
                            "-s", "db.password=hush",        "-s", "a\nb:double=0.1",
                            "-s", "big:double=1e300"};
    test::ServerProcess server{{"--writable", "net."}, sources};
};

TEST_F(RemoteCommands, PrintWhatLocalOnesPrint) {
    const Arguments commands[] = {
        {"get", "net.port"},
        {"get", "net.port", "nope", "db.password", "a\nb", "nope2"},
        {"get", "--json", "net.list"},
        {"get", "--json", "net.port", "nope", "big"},
        {"get", "--json", "nope"},
        {"get", "--export", "net.port", "net.name", "nope"},
        {"get", "--export", "net.port", "net_port"},
        {"keys"},
        {"keys", "net."},
        {"keys", "x"},
        {"keys", "--json"},
        {"show"},
        {"show", "net."},
        {"show", "x"},
        {"show", "--json"},
        {"show", "--secret", "net.*"},
        {"explain", "net.port"},
        {"explain", "nope"},
        {"explain", "db.password"},
        {"explain", "--json", "net.port"},
        {"explain", "--json", "--secret", "net.*", "net.port"},
    };
    for (const Arguments& command : commands) {
        SCOPED_TRACE(testing::PrintToString(command));
        EXPECT_EQ(runConnectorConfig(joined(sources, command)),
                  runConnectorConfig(remotely(command)));
    }
}

TEST_F(RemoteCommands, SetOptions) {
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig(remotely({"set", "net.port:int=-1"})));
    EXPECT_EQ((Result{0, "-1\n", ""}), runConnectorConfig(remotely({"get", "net.port"})));
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig(remotely({"set", "net.x=[a]=b"})));
    EXPECT_EQ((Result{0, "[a]=b\n", ""}), runConnectorConfig(remotely({"get", "net.x"})));
}

TEST_F(RemoteCommands, ReportWhatTheServiceRefuses) {
    EXPECT_EQ((Result{1, "",
                      "connector-config: Key must not be set: db.x (--writable PREFIX would allow "
                      "it)\n"}),
              runConnectorConfig(remotely({"set", "db.x=1"})));
}

TEST_F(RemoteCommands, ReportThatTheServiceIsGone) {
    server.stop();
    EXPECT_EQ(
        (Result{1, "",
                "connector-config: Cannot connect to " + urlOf(server) + ": Connection refused\n"}),
        runConnectorConfig(remotely({"keys"})));
}

TEST_F(RemoteCommands, WatchWithoutReadingStandardInput) {
    test::Process watch(
        test::connectorConfig(remotely({"watch", "net.port", "net.new", "db.password"})));
    EXPECT_EQ("connector-config: No value yet: net.new", watch.readErrorLine());
    EXPECT_EQ("net.port = 80  (override)", watch.readLine());
    EXPECT_EQ("db.password = ******  (override)", watch.readLine());
    watch.write("set net.port=1\nquit\n");
    runConnectorConfig(remotely({"set", "net.new:int=7"}));
    EXPECT_EQ("net.new = 7  (override)", watch.readLine());
    watch.signal(SIGTERM);
    EXPECT_EQ((Result{128 + SIGTERM, "", ""}), watch.finish());
}

TEST_F(RemoteCommands, WatchAgainAfterARestart) {
    test::Process watch(test::connectorConfig(remotely({"watch", "--json", "net.port"})));
    EXPECT_EQ(R"({"key":"net.port","source":"override","value":{"type":"uint","value":80}})",
              watch.readLine());
    server.stop();
    EXPECT_EQ("connector-config: Connection to " + urlOf(server) + " was closed",
              watch.readErrorLine());
    const test::ServerProcess second({}, {"-s", "net.port:int=81"},
                                     server.host() + ':' + std::to_string(server.port()));
    EXPECT_EQ(R"({"key":"net.port","source":"override","value":{"type":"int","value":81}})",
              watch.readLine());
    watch.signal(SIGTERM);
    EXPECT_EQ(128 + SIGTERM, watch.finish().status);
}

TEST(RemoteWatch, ReportsEachLossOfTheService) {
    using test::ScriptedServer;
    constexpr int losses = 3;
    ScriptedServer server([](ScriptedServer& self) {
        {
            ScriptedServer::Client client = self.accept();
            client.readRequest(); // whether there is a value
            client.respond(
                R"({"type":"connector/configuration/ConfigurationOptionResponse","message":{}})");
        }
        for (int i = 0; i < losses; ++i) {
            ScriptedServer::Client client = self.accept();
            client.readRequest();
            client.send("HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n"
                        "data: {\"key\":\"a\",\"source\":\"s\","
                        "\"value\":{\"type\":\"int\",\"value\":1}}\n\n");
        }
    });
    test::Process watch(test::connectorConfig({"--url", server.url(), "watch", "a"}));
    EXPECT_EQ("connector-config: No value yet: a", watch.readErrorLine());
    for (int i = 0; i < losses; ++i) {
        EXPECT_EQ("a = 1  (s)", watch.readLine());
        EXPECT_EQ("connector-config: Connection to " + server.url() + " was closed",
                  watch.readErrorLine());
    }
    watch.signal(SIGTERM);
    EXPECT_EQ(128 + SIGTERM, watch.finish().status);
}

TEST(RemoteArguments, IncludeAToken) {
    const test::TemporaryFile token("s3cret\n");
    const test::ServerProcess server({"--token-file", token.path()}, {"-s", "a=1"});
    EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"--url", urlOf(server), "--token-file",
                                                          token.path(), "get", "a"}));
    EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"get", "a", "--token-file", token.path(),
                                                          "--url", urlOf(server)}));
    EXPECT_EQ(1, runConnectorConfig({"--url", urlOf(server), "get", "a"}).status);
}

TEST(RemoteArguments, AreCheckedAtOnce) {
    const struct {
        int line;
        Arguments arguments;
        const char* message;
    } rows[] = {
        {__LINE__, {"set", "a=1"}, "set requires --url"},
        {__LINE__, {"--url", "unix:x", "set"}, "KEY[:TYPE]=VALUE is required"},
        {__LINE__, {"--url", "unix:x", "set", "a"}, "Not of the form KEY[:TYPE]=VALUE: a"},
        {__LINE__, {"--url", "unix:x", "-s", "a=1", "keys"}, "--url excludes --set"},
        {__LINE__, {"--url", "unix:x", "-d", "a=1", "keys"}, "--url excludes --default"},
        {__LINE__, {"--url", "unix:x", "-f", "f", "keys"}, "--url excludes --file"},
        {__LINE__, {"--url", "unix:x", "--env", "A", "keys"}, "--url excludes --env"},
        {__LINE__, {"--url", "unix:x", "serve"}, "--url excludes serve"},
        {__LINE__, {"--url", "unix:x", "watch", "a", "--reload"}, "--url excludes --reload"},
        {__LINE__,
         {"--url", "localhost", "keys"},
         "Not of the form http://HOST:PORT, https://HOST:PORT or unix:PATH: localhost"},
        {__LINE__, {"--token-file", "f", "keys"}, "--token-file requires --url"},
        {__LINE__, {"--ca", "f", "keys"}, "--ca requires --url"},
        {__LINE__,
         {"--url", "http://localhost:1", "--ca", "f", "keys"},
         "--ca requires a URL with https: http://localhost:1"},
        {__LINE__,
         {"--url", "http://localhost:1", "--client-cert", "f", "--client-key", "f", "keys"},
         "--client-cert requires a URL with https: http://localhost:1"},
        {__LINE__,
         {"--url", "unix:x", "--client-cert", "f", "--client-key", "f", "keys"},
         "--client-cert requires a URL with https: unix:x"},
        {__LINE__,
         {"--url", "https://localhost:1", "--client-cert", "", "--client-key", "f", "keys"},
         "Name of a file is empty: --client-cert"},
        {__LINE__,
         {"--url", "https://localhost:1", "--client-cert", "f", "--client-key", "", "keys"},
         "Name of a file is empty: --client-key"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{2, "", usageError(row.message)}), runConnectorConfig(row.arguments));
    }
}

} // namespace
