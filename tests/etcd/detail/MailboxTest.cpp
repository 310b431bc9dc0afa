// What waits for the telling thread.
#include <connector/etcd/detail/Mailbox.hpp>

#include "sources/Shown.hpp"

#include <gtest/gtest.h>

namespace {

using namespace connector::etcd::detail;
using connector::configuration::OptionValue;

KeyChange put(const std::string& key, int value) {
    return {key, KeyChange::Kind::Put, OptionValue(value)};
}
KeyChange erased(const std::string& key) {
    return {key, KeyChange::Kind::Erased, std::nullopt};
}
KeyChange unreadable(const std::string& key) {
    return {key, KeyChange::Kind::Unreadable, std::nullopt};
}

Known at(std::int64_t revision, std::set<std::string> unreadableKeys = {}) {
    Known known;
    known.revision = revision;
    known.unreadable = std::make_shared<const std::set<std::string>>(std::move(unreadableKeys));
    return known;
}

class MailboxTest : public testing::Test {
protected:
    Mail take() { return mailbox.take(std::nullopt); }

    Mailbox mailbox;
};

TEST_F(MailboxTest, HoldsTheNewestChangeOfEachKey) {
    mailbox.post(Changes{{put("a", 1), put("b", 1)}, at(1)});
    mailbox.post(Changes{{put("a", 2), erased("b")}, at(2)});
    const Mail mail = take();
    EXPECT_EQ(2u, mail.changes.size());
    EXPECT_EQ(std::optional(OptionValue(2)), mail.changes.at("a"));
    EXPECT_EQ(std::nullopt, mail.changes.at("b"));
    EXPECT_EQ(2, mail.known->revision);
    EXPECT_FALSE(mail.list);
}

TEST_F(MailboxTest, IsEmptyAfterItWasTaken) {
    mailbox.post(Changes{{put("a", 1)}, at(1)});
    mailbox.postReady(3);
    EXPECT_EQ(3u, take().ready);
    mailbox.ring();
    const Mail mail = take();
    EXPECT_FALSE(mail.known);
    EXPECT_EQ(0u, mail.ready);
    EXPECT_TRUE(mail.changes.empty());
}

TEST_F(MailboxTest, AnUnreadableValueKeepsTheGoodOneThatWaits) {
    mailbox.post(Changes{{put("a", 1), unreadable("a"), unreadable("b")}, at(1, {"a", "b"})});
    const Mail mail = take();
    EXPECT_EQ(1u, mail.changes.size());
    EXPECT_EQ(std::optional(OptionValue(1)), mail.changes.at("a"));
}

TEST_F(MailboxTest, AListReplacesAllChangesBeforeIt) {
    mailbox.post(Changes{{put("a", 1), put("b", 1)}, at(1)});
    mailbox.post(List{{{"a", 2}}, at(5)});
    mailbox.post(Changes{{put("c", 3)}, at(6)});
    const Mail mail = take();
    EXPECT_EQ(1u, mail.list->size());
    EXPECT_EQ(1u, mail.changes.size());
    EXPECT_EQ(6, mail.known->revision);
}

TEST_F(MailboxTest, UnreadableKeysOfAListKeepTheirLastGoodValue) {
    mailbox.post(List{{{"listed", 1}}, at(1, {"old"})});
    mailbox.post(Changes{{put("changed", 2), erased("gone")}, at(2)});
    mailbox.post(List{{}, at(5, {"listed", "old", "changed", "gone", "new"})});
    const Mail mail = take();
    EXPECT_EQ((connector::sources::Table{{"listed", 1}, {"changed", 2}}), *mail.list);
    EXPECT_EQ(std::set<std::string>{"old"}, mail.kept);
}

TEST_F(MailboxTest, WaitsUntilTheTimeHasCome) {
    const Mail mail = mailbox.take(Mailbox::Clock::now());
    EXPECT_FALSE(mail.known);
    EXPECT_FALSE(mail.isLast);
}

TEST_F(MailboxTest, TasksAreTakenOnceAndTheLastMailIsMarked) {
    int runs = 0;
    mailbox.post([&] { ++runs; });
    mailbox.close();
    Mail mail = take();
    EXPECT_TRUE(mail.isLast);
    ASSERT_EQ(1u, mail.tasks.size());
    mail.tasks.front()();
    EXPECT_EQ(1, runs);
    mailbox.ring();
    EXPECT_TRUE(take().tasks.empty());
}

} // namespace
