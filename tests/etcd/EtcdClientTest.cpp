// Reading and writing without following.
#include "Fixture.hpp"

#include <connector/etcd/EtcdClient.hpp>

#include <optional>

namespace {

using namespace test;
using connector::etcd::Change;
using connector::etcd::Conflict;
using connector::etcd::Content;
using connector::etcd::EtcdClient;
using connector::etcd::Unknown;
using connector::etcd::Written;

/// @return the failure of an action; empty if there is none
template <typename Action>
std::string failureOf(Action action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

class EtcdClientTest : public testing::Test {
protected:
    EtcdServer server;
    Client other{server.endpoint()};
    Options options = optionsFor({server.endpoint()});
};

TEST_F(EtcdClientTest, ReadsAllKeysWithTheirRevisions) {
    const std::int64_t first = other.put(prefix + "a", "one");
    const std::int64_t second = other.put(prefix + "b", R"({"type":"int","value":"x"})");
    const std::int64_t last = other.write({{prefix, "no option"}, {prefix + "\xFF", "no option"}});
    const Content content = EtcdClient(options).read();
    EXPECT_EQ(last, content.revision);
    EXPECT_NE(0u, content.clusterId);
    ASSERT_EQ(2u, content.entries.size());
    EXPECT_TRUE(content.entries.at("a").value == OptionValue(std::string("one")));
    EXPECT_EQ(first, content.entries.at("a").revision);
    EXPECT_FALSE(content.entries.at("b").value);
    EXPECT_EQ(second, content.entries.at("b").revision);
}

TEST_F(EtcdClientTest, ReadsListsOfSeveralPages) {
    EtcdClient client(options);
    for (int part = 0; part < 20; ++part) {
        std::vector<Change> changes;
        for (int i = 0; i < 128; ++i)
            changes.push_back({std::to_string(part * 128 + i), OptionValue(i), {}});
        client.apply(changes);
    }
    EXPECT_EQ(20u * 128, client.read().entries.size());
}

TEST_F(EtcdClientTest, AnswersWhatATransactionDid) {
    EtcdClient client(options);
    const Written put = client.apply({{"a", OptionValue(1), {}}, {"b", OptionValue(2), {}}});
    EXPECT_EQ(other.list(prefix).revision, put.revision);
    EXPECT_EQ(0u, put.erased);
    const Written erased = client.apply(
        {{"a", std::nullopt, {}}, {"b", OptionValue(3), {}}, {"missing", std::nullopt, {}}});
    EXPECT_EQ(put.revision + 1, erased.revision);
    EXPECT_EQ(1u, erased.erased);
    EXPECT_EQ(1u, other.list(prefix).values.size());
}

TEST_F(EtcdClientTest, WritesNothingIfAnExpectationIsNotTrue) {
    EtcdClient client(options);
    const std::int64_t revision = client.apply({{"a", OptionValue(1), 0}}).revision;
    EXPECT_THROW(client.apply({{"b", OptionValue(1), {}}, {"a", OptionValue(2), revision - 1}}),
                 Conflict);
    EXPECT_THROW(client.apply({{"a", std::nullopt, 0}}), Conflict);
    EXPECT_EQ(1u, other.list(prefix).values.size());
    EXPECT_EQ(revision + 1, client.apply({{"a", OptionValue(2), revision}}).revision);
}

TEST_F(EtcdClientTest, RefusesTransactionsThatCannotBe) {
    EtcdClient client(options);
    EXPECT_THROW(client.apply({}), std::invalid_argument);
    EXPECT_THROW(client.apply({{"\xFF", OptionValue(1), {}}}), std::invalid_argument);
    EXPECT_THROW(client.apply(std::vector<Change>(129, {"a", OptionValue(1), {}})),
                 std::invalid_argument);
    options.prefix = "";
    EXPECT_THROW(EtcdClient refused(options), std::invalid_argument);
}

TEST_F(EtcdClientTest, TriesAllEndpoints) {
    options.endpoints.insert(options.endpoints.begin(),
                             "http://127.0.0.1:" + std::to_string(freePort()));
    EXPECT_EQ(1, EtcdClient(options).read().revision);
}

/// A server needs some time from its start to its first answer.
TEST_F(EtcdClientTest, WaitsForAnEngineThatIsAboutToAnswer) {
    options.writeTimeout = 60s;
    EtcdClient client(options);
    server.kill();
    server.restart();
    EXPECT_EQ(1, client.read().revision);
}

TEST_F(EtcdClientTest, NamesEndpointAndCauseIfNobodyAnswers) {
    const std::string nobody = "http://127.0.0.1:" + std::to_string(freePort());
    options.endpoints = {nobody};
    options.writeTimeout = 100ms;
    EtcdClient client(options);
    const std::string failure = failureOf([&] { client.read(); });
    EXPECT_EQ(0u, failure.find(nobody + ": ")) << failure;
    EXPECT_NE(std::string::npos, failure.find("refused")) << failure;
    const std::string notWritten = failureOf([&] { client.apply({{"a", OptionValue(1), {}}}); });
    EXPECT_EQ(0u, notWritten.find("Not written: " + nobody + ": ")) << notWritten;
}

TEST_F(EtcdClientTest, NamesTheEndpointIfItDoesNotAnswerInTime) {
    options.writeTimeout = 300ms;
    server.freeze();
    EXPECT_EQ(server.endpoint() + ": no answer in time",
              failureOf([&] { EtcdClient(options).read(); }));
    server.thaw();
}

/// The question whether somebody is there takes two delays, and the write two more.
TEST_F(EtcdClientTest, DoesNotKnowWhetherAWriteHappenedWithoutAnAnswer) {
    Proxy proxy(server.port());
    options.endpoints = {proxy.endpoint()};
    options.writeTimeout = 3'200ms;
    EtcdClient client(options);
    ASSERT_GT(client.apply({{"a", OptionValue(1), {}}}).revision, 0);
    proxy.delay(1s);
    try {
        client.apply({{"a", OptionValue(2), {}}});
        FAIL() << "it was answered in time";
    } catch (const Unknown& unknown) {
        EXPECT_EQ("Unknown whether it was written: " + proxy.endpoint() + ": no answer in time",
                  std::string(unknown.what()));
    }
}

TEST_F(EtcdClientTest, ConnectsAgainAfterARestart) {
    EtcdClient client(options);
    ASSERT_GT(client.apply({{"a", OptionValue(1), {}}}).revision, 0);
    server.kill();
    server.restart();
    server.waitUntilReady();
    EXPECT_EQ(1u, client.read().entries.size());
}

TEST_F(EtcdClientTest, FailsAtOnceIfItIsRefused) {
    for (const char* words : {"user add root:secret", "user grant-role root root",
                              "user add reader:first", "auth enable"})
        server.control(words);
    options.writeTimeout = 60min;
    options.user = "reader";
    options.password = "wrong";
    const std::string wrong = failureOf([&] { EtcdClient(options).read(); });
    EXPECT_NE(std::string::npos, wrong.find("authentication failed")) << wrong;
    options.password = "first";
    const std::string forbidden = failureOf([&] { EtcdClient(options).read(); });
    EXPECT_NE(std::string::npos, forbidden.find("permission denied")) << forbidden;
    options.user = "root";
    options.password = "secret";
    EXPECT_TRUE(EtcdClient(options).read().entries.empty());
}

} // namespace
