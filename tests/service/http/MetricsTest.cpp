/// GET /metrics, /healthz and /readyz
#include "configuration/MutexHolder.hpp"
#include "service/support/HttpClient.hpp"
#include "service/support/InProcessServer.hpp"
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using test::get;
using test::HttpClient;
using test::HttpResponse;
using test::InProcessServer;
using test::put;

/// @param sample  a line of the text, without the line break
void expectSample(const std::string& sample, const InProcessServer& server) {
    const std::string text = get(server.port(), "/metrics").body;
    EXPECT_NE(text.npos, text.find('\n' + sample + '\n')) << sample << "\nis not in\n" << text;
}

TEST(Metrics, AreInTheTextFormat) {
    const InProcessServer server;
    const HttpResponse response = get(server.port(), "/metrics");
    EXPECT_EQ(200, response.status);
    EXPECT_EQ("text/plain; version=0.0.4; charset=utf-8", response.headers.at("content-type"));
    EXPECT_EQ(0u, response.body.find("# HELP connector_http_requests_total "));
}

TEST(Metrics, CountRequestsByRouteAndStatus) {
    const InProcessServer server;
    put(server.port(), "a", "1");
    get(server.port(), "/options/a");
    get(server.port(), "/options/none");
    get(server.port(), "/options");
    get(server.port(), "/nowhere");
    get(server.port(), "/options", {"Host: evil.example"});
    expectSample(R"(connector_http_requests_total{route="/options/{key}",status="200"} 2)", server);
    expectSample(R"(connector_http_requests_total{route="/options/{key}",status="404"} 1)", server);
    expectSample(R"(connector_http_requests_total{route="/options",status="200"} 1)", server);
    expectSample(R"(connector_http_requests_total{route="/options",status="403"} 1)", server);
    expectSample(R"(connector_http_requests_total{route="other",status="404"} 1)", server);
    expectSample(R"(connector_http_request_duration_seconds_count{route="/options/{key}"} 3)",
                 server);
    expectSample(
        R"(connector_http_request_duration_seconds_bucket{route="/options/{key}",le="+Inf"} 3)",
        server);
}

TEST(Metrics, CountWhatTheConfigurationHas) {
    const InProcessServer server;
    server.configuration->set("a", 1).get();
    server.configuration->set("b", 1).get();
    expectSample("connector_options 2", server);
    expectSample("connector_sources 2", server);
}

TEST(Metrics, CountOptionsGivenOut) {
    const InProcessServer server;
    server.configuration->set("a", 1).get();
    server.configuration->set("b", 1).get();
    get(server.port(), "/options");
    get(server.port(), "/options/a");
    get(server.port(), "/options/none");
    test::post(server.port(), test::getMessage("a"));
    test::post(server.port(), test::getMessage("none"));
    expectSample("connector_lookups_total 4", server);
}

TEST(Metrics, CountStreamsAndTheValuesTheyGet) {
    const InProcessServer server;
    server.configuration->set("a", 1).get();
    expectSample("connector_event_streams 0", server);
    HttpClient watcher(server.port());
    watcher.get("/watch?key=a");
    EXPECT_NE("", watcher.readLineStartingWith("data: "));
    expectSample("connector_event_streams 1", server);
    expectSample("connector_changes_told_total 1", server);
    expectSample("connector_http_connections 2", server); // this one is the other
}

TEST(Metrics, CountReloads) {
    InProcessServer server;
    server.service.countReload(true);
    server.service.countReload(true);
    server.service.countReload(false);
    expectSample(R"(connector_reloads_total{result="success"} 2)", server);
    expectSample(R"(connector_reloads_total{result="failure"} 1)", server);
}

TEST(Metrics, HaveNoKeyInAnyLabel) {
    const InProcessServer server;
    put(server.port(), "my-own-key", "\"my-own-value\"");
    get(server.port(), "/watch?wrong=my-own-key");
    const std::string text = get(server.port(), "/metrics").body;
    EXPECT_EQ(text.npos, text.find("my-own"));
}

TEST(Health, NeedsNoToken) {
    const test::TemporaryDirectory directory;
    const std::string file = directory.write("token", "s3cret").string();
    const test::ServerProcess server({"--token-file", file});
    for (const char* path : {"/healthz", "/readyz"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(200, get(server.port(), path).status);
        EXPECT_EQ(403, get(server.port(), path, {"Host: evil.example"}).status);
    }
    EXPECT_EQ(401, get(server.port(), "/metrics").status);
    EXPECT_EQ(401, get(server.port(), "/openapi.json").status);
}

TEST(Health, IsToldWhileAllWorkersWaitForTheConfiguration) {
    const InProcessServer server;
    put(server.port(), "k", "1");
    test::MutexHolder holder(*server.configuration);
    std::vector<HttpClient> waiting;
    for (int i = 0; i < 20; ++i) {
        waiting.emplace_back(server.port());
        waiting.back().get("/options/k");
    }
    HttpClient ready(server.port());
    ready.get("/readyz");
    EXPECT_EQ(200, get(server.port(), "/healthz").status);
    holder.release();
    EXPECT_EQ(200, ready.response().status);
    for (HttpClient& client : waiting)
        EXPECT_EQ(200, client.response().status);
}

} // namespace
