// Messages of a watch.
#include <connector/etcd/detail/Watching.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace connector::etcd::detail;
using etcdserverpb::Event;
using etcdserverpb::WatchResponse;
using News = Watching::News;

Known knownAt(std::int64_t revision) {
    Known known;
    known.revision = revision;
    known.clusterId = 9;
    return known;
}

WatchResponse message(std::int64_t revision) {
    WatchResponse response;
    response.mutable_header()->set_cluster_id(9);
    response.mutable_header()->set_revision(revision);
    return response;
}

void add(WatchResponse& response, const std::string& key, const std::string& value,
         std::int64_t revision, Event::EventType type = Event::PUT) {
    Event& event = *response.add_events();
    event.set_type(type);
    event.mutable_kv()->set_key(key);
    event.mutable_kv()->set_value(value);
    event.mutable_kv()->set_mod_revision(revision);
}

class WatchingTest : public testing::Test {
protected:
    Watching watching{"p/", knownAt(5)};
};

TEST_F(WatchingTest, BeginsAfterTheKnownRevision) {
    const auto request = watching.begin();
    EXPECT_EQ(6, request.create_request().start_revision());
    EXPECT_EQ("p/", request.create_request().key());
    EXPECT_EQ("p0", request.create_request().range_end());
    WatchResponse created = message(8);
    created.set_created(true);
    EXPECT_EQ(News::Began, watching.take(created));
    EXPECT_EQ(5, watching.known().revision);
}

TEST_F(WatchingTest, ReachesTheRevisionOfTheLastChange) {
    WatchResponse response = message(9);
    add(response, "p/a", "1", 6);
    add(response, "p/a", "2", 7);
    add(response, "p/b", "", 7, Event::DELETE);
    EXPECT_EQ(News::Changed, watching.take(response));
    const Changes changes = watching.takeChanges();
    EXPECT_EQ(7, changes.known.revision);
    ASSERT_EQ(3u, changes.keys.size());
    EXPECT_EQ(KeyChange::Kind::Erased, changes.keys[2].kind);
    EXPECT_EQ("p/a", changes.known.witness.key);
    EXPECT_EQ(7, changes.known.witness.modRevision);
}

TEST_F(WatchingTest, WaitsForAllFragmentsOfAMessage) {
    WatchResponse first = message(6);
    add(first, "p/a", "1", 6);
    first.set_fragment(true);
    EXPECT_EQ(News::None, watching.take(first));
    EXPECT_EQ(5, watching.known().revision);
    WatchResponse second = message(6);
    add(second, "p/b", "1", 6);
    EXPECT_EQ(News::Changed, watching.take(second));
    EXPECT_EQ(2u, watching.takeChanges().keys.size());
    EXPECT_EQ(6, watching.known().revision);
}

TEST_F(WatchingTest, AProgressThatWasAskedForSaysNothingOfRevisions) {
    WatchResponse progress = message(50);
    progress.set_watch_id(-1);
    EXPECT_EQ(News::None, watching.take(progress));
    EXPECT_EQ(5, watching.known().revision);
}

TEST_F(WatchingTest, AProgressOfTheWatchAdvancesTheRevision) {
    EXPECT_EQ(News::Changed, watching.take(message(50)));
    EXPECT_EQ(50, watching.takeChanges().known.revision);
    EXPECT_EQ(News::None, watching.take(message(49)));
}

TEST_F(WatchingTest, ChangesThatAreKnownAreSkipped) {
    WatchResponse response = message(6);
    add(response, "p/a", "old", 5);
    add(response, "p/a", "new", 6);
    EXPECT_EQ(News::Changed, watching.take(response));
    EXPECT_EQ(1u, watching.takeChanges().keys.size());
}

TEST_F(WatchingTest, ReportsCompactionAndRefusal) {
    WatchResponse compacted = message(9);
    compacted.set_canceled(true);
    compacted.set_compact_revision(8);
    EXPECT_EQ(News::Compacted, watching.take(compacted));
    WatchResponse refused = message(9);
    refused.set_created(true);
    refused.set_canceled(true);
    refused.set_cancel_reason("permission denied");
    EXPECT_THROW(watching.take(refused), std::runtime_error);
}

TEST_F(WatchingTest, TracksUnreadableKeys) {
    WatchResponse response = message(7);
    add(response, "p/a", "\xFF", 6);
    add(response, "p/b", "\xFF", 6);
    add(response, "p/b", "good", 7);
    add(response, "p/", "ignored", 7);
    watching.take(response);
    EXPECT_EQ(std::set<std::string>{"a"}, *watching.takeChanges().known.unreadable);
    EXPECT_EQ(1u, watching.takeIgnored());
    EXPECT_EQ(0u, watching.takeIgnored());
}

TEST_F(WatchingTest, TheWitnessOfAnErasedKeyIsItsStateBefore) {
    WatchResponse response = message(9);
    add(response, "p/a", "1", 6);
    add(response, "p/a", "", 9, Event::DELETE);
    watching.take(response);
    EXPECT_EQ("p/a", watching.known().witness.key);
    EXPECT_EQ(8, watching.known().witness.at);
}

TEST_F(WatchingTest, RefusesNonsense) {
    WatchResponse other = message(9);
    other.mutable_header()->set_cluster_id(8);
    EXPECT_THROW(watching.take(other), std::runtime_error);
    WatchResponse outside = message(9);
    add(outside, "q", "1", 9);
    EXPECT_THROW(watching.take(outside), std::runtime_error);
    WatchResponse backwards = message(9);
    add(backwards, "p/a", "1", 9);
    add(backwards, "p/a", "1", 8);
    EXPECT_THROW(Watching("p/", knownAt(5)).take(backwards), std::runtime_error);
}

} // namespace
