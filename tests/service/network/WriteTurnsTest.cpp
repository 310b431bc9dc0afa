#include <connector/service/network/WriteTurns.hpp>

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace {

using connector::service::WriteTurns;

class WriteTurnsTest : public testing::Test {
protected:
    WriteTurnsTest() { turns.start(); }

    void add(std::size_t number) {
        turns.add([this, number] { done.push_back(number); });
    }

    void addAsManyAs(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            add(i);
    }

    /// Runs everything that is to do now.
    void run() {
        while (io.poll() > 0) {
        }
    }

    boost::asio::io_context io{1};
    WriteTurns turns{io};
    std::vector<std::size_t> done;
};

TEST_F(WriteTurnsTest, WritesAreDoneInTheOrderInWhichTheyWereAdded) {
    constexpr std::size_t count = 10 * WriteTurns::writesInATurn + 1;
    addAsManyAs(count);
    run();
    ASSERT_EQ(count, done.size());
    for (std::size_t i = 0; i < count; ++i)
        EXPECT_EQ(i, done[i]);
}

TEST_F(WriteTurnsTest, NoWriteIsDoneWhileItIsAdded) {
    add(0);
    EXPECT_TRUE(done.empty());
}

TEST_F(WriteTurnsTest, OtherWorkIsDoneAfterEachTurn) {
    addAsManyAs(10 * WriteTurns::writesInATurn);
    std::vector<std::size_t> doneBefore;
    const std::function<void()> otherWork = [&] {
        doneBefore.push_back(done.size());
        if (done.size() < 10 * WriteTurns::writesInATurn)
            boost::asio::post(io, otherWork);
    };
    boost::asio::post(io, otherWork);
    run();
    for (std::size_t turn = 0; turn <= 10; ++turn) {
        EXPECT_NE(doneBefore.end(),
                  std::find(doneBefore.begin(), doneBefore.end(), turn * WriteTurns::writesInATurn))
            << turn;
    }
}

TEST_F(WriteTurnsTest, AWriteThatIsAddedByAnotherIsDoneAfterAllThatWait) {
    turns.add([this] { add(9); });
    add(1);
    add(2);
    run();
    EXPECT_EQ((std::vector<std::size_t>{1, 2, 9}), done);
}

TEST_F(WriteTurnsTest, AWriteThatIsAddedLaterIsDoneToo) {
    add(1);
    run();
    add(2);
    run();
    EXPECT_EQ((std::vector<std::size_t>{1, 2}), done);
}

TEST_F(WriteTurnsTest, WritesThatWaitAreForgottenAtTheEnd) {
    const auto owned = std::make_shared<int>();
    turns.add([owned] {});
    add(1);
    turns.close();
    EXPECT_EQ(1, owned.use_count());
    run();
    EXPECT_TRUE(done.empty());
}

TEST_F(WriteTurnsTest, ASecondStartLosesNothing) {
    addAsManyAs(2 * WriteTurns::writesInATurn);
    turns.start();
    run();
    EXPECT_EQ(2 * WriteTurns::writesInATurn, done.size());
}

} // namespace
