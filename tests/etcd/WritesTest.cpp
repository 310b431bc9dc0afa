// Writing.
#include "Fixture.hpp"

#include <future>

namespace {

using namespace test;
using connector::etcd::Change;
using connector::etcd::Conflict;
using connector::etcd::Unknown;

class WritesTest : public testing::Test {
protected:
    std::string failureOf(connector::Future<std::int64_t> future) {
        try {
            future.get();
        } catch (const std::exception& error) {
            return error.what();
        }
        return "";
    }

    EtcdServer server;
    Client client{server.endpoint()};
    std::shared_ptr<EtcdSource> source = sourceOf(server.endpoint());
};

TEST_F(WritesTest, AnswerTheRevision) {
    const std::int64_t revision = source->put("a", "one").get();
    EXPECT_EQ(client.list(prefix).revision, revision);
    EXPECT_EQ("one", client.list(prefix).values["a"]);
    EXPECT_EQ(revision + 1, source->put("a", OptionValue(5)).get());
    EXPECT_EQ(R"({"type":"int","value":5})", client.list(prefix).values["a"]);
    EXPECT_EQ(revision + 2, source->erase("a").get());
    EXPECT_TRUE(client.list(prefix).values.empty());
}

TEST_F(WritesTest, CanBeReadAtTheirRevision) {
    const std::int64_t revision = source->put("a", "one").get();
    ASSERT_TRUE(source->waitFor(revision, 30s));
    EXPECT_EQ("one", textOf(*source, "a"));
    EXPECT_EQ(revision, source->status().revision);
}

TEST_F(WritesTest, HappenIfTheExpectedRevisionIsTrue) {
    const std::int64_t first = source->put("a", "one", 0).get();
    const std::int64_t second = source->put("a", "two", first).get();
    EXPECT_EQ(second + 1, source->erase("a", second).get());
    EXPECT_EQ(second + 2, source->put("a", "three", 0).get());
}

TEST_F(WritesTest, AreAConflictIfTheExpectedRevisionIsNotTrue) {
    const std::int64_t first = source->put("a", "one").get();
    const std::int64_t second = source->put("a", "two").get();
    try {
        source->put("a", "three", first).get();
        FAIL() << "no conflict";
    } catch (const Conflict& conflict) {
        EXPECT_EQ("a", conflict.key());
        EXPECT_EQ(first, conflict.expected());
        EXPECT_EQ(second, conflict.actual());
        EXPECT_EQ("Conflict: a is at revision " + std::to_string(second) + ", not " +
                      std::to_string(first),
                  std::string(conflict.what()));
    }
    EXPECT_THROW(source->erase("a", first).get(), Conflict);
    EXPECT_THROW(source->put("a", "three", 0).get(), Conflict);
    EXPECT_THROW(source->put("b", "three", first).get(), Conflict);
    EXPECT_EQ("two", client.list(prefix).values["a"]);
}

TEST_F(WritesTest, OfATransactionHappenAllOrNone) {
    const std::int64_t revision =
        source->apply({{"a", OptionValue(1), {}}, {"b", OptionValue(2), {}}}).get();
    EXPECT_EQ(revision, client.list(prefix).revision);
    EXPECT_THROW(
        source->apply({{"a", std::nullopt, {}}, {"b", OptionValue(3), revision + 7}}).get(),
        Conflict);
    EXPECT_EQ(2u, client.list(prefix).values.size());
    EXPECT_EQ(
        revision + 1,
        source->apply({{"a", std::nullopt, revision}, {"b", OptionValue(3), revision}}).get());
    EXPECT_EQ(1u, client.list(prefix).values.size());
}

TEST_F(WritesTest, OfATransactionAreAtMost128) {
    std::vector<Change> changes;
    for (int i = 0; i < 128; ++i)
        changes.push_back({"key." + std::to_string(i), OptionValue(i), {}});
    EXPECT_GT(source->apply(changes).get(), 0);
    changes.push_back({"one more", OptionValue(1), {}});
    EXPECT_EQ("A transaction has at most 128 changes, not 129", failureOf(source->apply(changes)));
}

TEST_F(WritesTest, ThatTheEngineRefusesFailWithItsMessage) {
    const std::string failure =
        failureOf(source->put("a", OptionValue(std::string(2'000'000, 'x'))));
    EXPECT_EQ(0u, failure.find("Not written: ")) << failure;
    EXPECT_NE(std::string::npos, failure.find("too large")) << failure;
}

TEST_F(WritesTest, ContinuationsMayWriteAgain) {
    auto last = std::make_shared<std::promise<std::int64_t>>();
    source->put("a", "1").then([this, last](connector::Future<std::int64_t>&) {
        source->put("b", "2").then(
            [last](connector::Future<std::int64_t>& revision) { last->set_value(revision.get()); });
    });
    const std::int64_t revision = last->get_future().get();
    EXPECT_EQ(client.list(prefix).revision, revision);
}

TEST_F(WritesTest, FromSeveralThreadsAreAllAnswered) {
    std::vector<std::future<void>> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.push_back(std::async(std::launch::async, [this, thread] {
            for (int i = 0; i < 50; ++i)
                source->put("key." + std::to_string(thread), OptionValue(i)).get();
        }));
    for (auto& thread : threads)
        thread.get();
    EXPECT_EQ(4u, client.list(prefix).values.size());
}

TEST_F(WritesTest, WaitForTheEngineAndFailWhenTheyWereNotSent) {
    Options options = optionsFor({server.endpoint()});
    options.writeTimeout = 300ms;
    const auto hasty = std::make_shared<EtcdSource>(options);
    options.writeTimeout = 30s;
    source = std::make_shared<EtcdSource>(options);
    Observer hastyOne(*hasty);
    Observer patientOne(*source);
    server.kill();
    ASSERT_TRUE(hastyOne.waitFor(State::Stale));
    ASSERT_TRUE(patientOne.waitFor(State::Stale));
    EXPECT_EQ("Not written: etcd does not answer", failureOf(hasty->put("a", "lost")));
    auto patient = source->put("b", "kept");
    server.restart();
    EXPECT_GT(patient.get(), 0);
    EXPECT_EQ(1u, client.list(prefix).values.size());
}

TEST_F(WritesTest, WithoutAnAnswerAreUnknown) {
    Proxy proxy(server.port());
    Options options = optionsFor({proxy.endpoint()});
    options.writeTimeout = 1s;
    const auto cutOff = std::make_shared<EtcdSource>(options); // it is current, so it sends at once
    proxy.drop();
    EXPECT_THROW(cutOff->put("a", "unknown").get(), Unknown);
}

TEST_F(WritesTest, AreAnsweredWhenTheSourceIsStopped) {
    Proxy proxy(server.port());
    auto cutOff = sourceOf(proxy.endpoint());
    ASSERT_TRUE(cutOff->waitFor(cutOff->put("a", "before").get(), 30s));
    proxy.drop();
    auto sent = cutOff->put("a", "unknown");
    // The proxy holds it back; what follows on the network thread shows that it was sent.
    cutOff->stop();
    const std::string failure = failureOf(std::move(sent));
    EXPECT_TRUE(failure == "Unknown whether it was written: the source was stopped" ||
                failure == "Not written: the source was stopped")
        << failure;
    EXPECT_EQ("Not written: the source was stopped", failureOf(cutOff->put("a", "late")));
    EXPECT_EQ("before", textOf(*cutOff, "a"));
}

TEST_F(WritesTest, OfAFullServerFailAndReadingGoesOn) {
    EtcdServer small({"--quota-backend-bytes=2000000"});
    const auto full = sourceOf(small.endpoint());
    Observer observer(*full);
    std::string failure;
    for (int i = 0; failure.empty() && i < 100; ++i)
        failure = failureOf(
            full->put("key." + std::to_string(i), OptionValue(std::string(100'000, 'x'))));
    EXPECT_NE(std::string::npos, failure.find("database space exceeded")) << failure;
    EXPECT_EQ(0u, failure.find("Not written: ")) << failure;
    EXPECT_EQ(State::Current, full->status().state);
    small.control("del --prefix " + prefix);
    const std::int64_t revision = Client(small.endpoint()).list(prefix).revision;
    small.control("compact " + std::to_string(revision));
    small.control("defrag");
    small.control("alarm disarm");
    ASSERT_TRUE(eventually([&] { return failureOf(full->put("a", "room again")).empty(); }));
    Client other(small.endpoint());
    EXPECT_TRUE(agrees(*full, other));
}

} // namespace
