// The status.
#include <connector/etcd/detail/Board.hpp>

#include <gtest/gtest.h>

#include <future>

namespace {

using namespace std::chrono_literals;
using connector::etcd::State;
using connector::etcd::detail::Board;
using connector::etcd::detail::Known;

Known at(std::int64_t revision) {
    Known known;
    known.revision = revision;
    return known;
}

TEST(BoardTest, BeginsAsStarting) {
    const Board board;
    EXPECT_EQ(State::Starting, board.status().state);
    EXPECT_EQ(0, board.status().revision);
}

TEST(BoardTest, ASessionThatBrokeMeanwhileDoesNotMakeItCurrent) {
    Board board;
    board.caughtUp(1);
    EXPECT_EQ(State::Current, board.status().state);
    board.broke(2, "gone");
    board.caughtUp(2); // told late
    EXPECT_EQ(State::Stale, board.status().state);
    EXPECT_EQ("gone", board.status().failure);
    board.caughtUp(3);
    EXPECT_EQ(State::Current, board.status().state);
    EXPECT_EQ("gone", board.status().failure);
}

TEST(BoardTest, NothingFollowsTheStop) {
    Board board;
    board.stop();
    board.broke(1, "gone");
    EXPECT_EQ(State::Stopped, board.status().state);
}

TEST(BoardTest, TheVersionChangesWithWhatIsReported) {
    Board board;
    auto version = board.version();
    const auto hasChanged = [&] { return std::exchange(version, board.version()) != version; };
    board.told(at(5));
    board.countList();
    EXPECT_FALSE(hasChanged());
    board.broke(1, "gone");
    EXPECT_TRUE(hasChanged());
    board.broke(2, "gone");
    EXPECT_FALSE(hasChanged());
    board.broke(3, "gone otherwise");
    EXPECT_TRUE(hasChanged());
    Known known = at(6);
    known.unreadable = std::make_shared<const std::set<std::string>>(std::set<std::string>{"a"});
    board.told(known);
    EXPECT_TRUE(hasChanged());
    board.told(known);
    EXPECT_FALSE(hasChanged());
}

TEST(BoardTest, WaitingEndsWithTheRevisionAndWithTheStop) {
    Board board;
    auto first = std::async(std::launch::async, [&] { return board.waitForRevision(5, 1min); });
    auto second = std::async(std::launch::async, [&] { return board.waitForRevision(6, 1min); });
    auto third = std::async(std::launch::async, [&] { return board.waitForCurrent(1min); });
    board.told(at(5));
    EXPECT_TRUE(first.get());
    EXPECT_FALSE(board.waitForRevision(6, 1ms));
    board.stop();
    EXPECT_FALSE(second.get());
    EXPECT_FALSE(third.get());
}

} // namespace
