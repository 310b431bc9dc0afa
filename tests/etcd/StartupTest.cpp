// The start without the engine.
#include "Fixture.hpp"

namespace {

using namespace test;

Options withoutEngine(Startup startup) {
    Options options = optionsFor({"http://127.0.0.1:" + std::to_string(freePort())});
    options.startup = startup;
    return options;
}

std::string failureOf(const Options& options) {
    try {
        const EtcdSource source(options);
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

TEST(StartupTest, WaitThrowsTheCause) {
    const Options options = withoutEngine(Startup::Wait(2s));
    const std::string failure = failureOf(options);
    EXPECT_EQ(0u, failure.find("etcd does not answer: " + options.endpoints[0])) << failure;
    EXPECT_NE(std::string::npos, failure.find("refused")) << failure;
}

TEST(StartupTest, EmptyBeginsEmptyAndCatchesUp) {
    EtcdServer server;
    Client client(server.endpoint());
    client.put(prefix + "a", "1");
    Proxy proxy(server.port());
    proxy.refuse();
    Options options = optionsFor({proxy.endpoint()});
    options.startup = Startup::Empty();
    const auto source = std::make_shared<EtcdSource>(options);
    Observer observer(*source);
    EXPECT_TRUE(source->table()->empty());
    EXPECT_TRUE(observer.waitFor(State::Stale));
    proxy.pass();
    EXPECT_TRUE(observer.waitFor(State::Current));
    EXPECT_EQ("1", textOf(*source, "a"));
}

TEST(StartupTest, CachedWithoutAFileBeginsEmpty) {
    const TemporaryDirectory folder;
    Options options = withoutEngine(Startup::Cached());
    options.cacheFile = folder.path / "cache";
    EtcdSource source(options);
    EXPECT_TRUE(source.table()->empty());
    EXPECT_EQ(0, source.status().revision);
}

TEST(StartupTest, RefusesOptionsThatCannotWork) {
    Options options = withoutEngine(Startup::Empty());
    options.prefix = "";
    EXPECT_EQ("The prefix is empty", failureOf(options));
    options.prefix = "a";
    options.endpoints = {"127.0.0.1:1"};
    EXPECT_EQ("Not an endpoint: 127.0.0.1:1", failureOf(options));
    options.endpoints = {};
    EXPECT_EQ("There is no endpoint", failureOf(options));
}

} // namespace
