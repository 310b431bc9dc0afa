#include "fleet/StateLines.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

namespace {

using connector::etcd::State;
using connector::etcd::Status;
using connector_config::StateLines;

using Line = std::optional<std::string>;

/// The times are of a zone that is three and a half hours ahead of UTC.
class StateLinesTest : public testing::Test {
protected:
    StateLinesTest() {
        ::setenv("TZ", "XXX-3:30", 1);
        ::tzset();
    }
    ~StateLinesTest() override {
        ::unsetenv("TZ");
        ::tzset();
    }

    /// @param seconds  of the time since which it is so
    static Status status(State state, int seconds, std::int64_t revision = 7,
                         const std::string& failure = "http://a:1: refused") {
        Status status;
        status.state = state;
        status.since = std::chrono::system_clock::time_point(std::chrono::seconds(seconds));
        status.revision = revision;
        status.failure = failure;
        return status;
    }

    StateLines lines{"fleet"};
};

TEST_F(StateLinesTest, TellWhenASourceIsStaleAndCurrentAgain) {
    EXPECT_EQ(Line(), lines.next(status(State::Starting, 1)));
    EXPECT_EQ(Line(), lines.next(status(State::Current, 2)));
    EXPECT_EQ(Line("fleet: stale since 03:30:03: http://a:1: refused"),
              lines.next(status(State::Stale, 3)));
    EXPECT_EQ(Line("fleet: current at revision 8"), lines.next(status(State::Current, 4, 8)));
    EXPECT_EQ(Line("fleet: stale since 03:30:05: http://a:1: gone"),
              lines.next(status(State::Stale, 5, 8, "http://a:1: gone")));
}

TEST_F(StateLinesTest, AreSilentWhileTheStateStays) {
    lines.next(status(State::Current, 2));
    EXPECT_EQ(Line(), lines.next(status(State::Current, 2, 9)));
    EXPECT_NE(Line(), lines.next(status(State::Stale, 3)));
    EXPECT_EQ(Line(), lines.next(status(State::Stale, 3, 9, "another failure")));
}

TEST_F(StateLinesTest, TellAStateThatWasLeftAndEnteredAgain) {
    lines.next(status(State::Stale, 3));
    EXPECT_EQ(Line("fleet: stale since 03:30:09: http://a:1: refused"),
              lines.next(status(State::Stale, 9)));
}

TEST_F(StateLinesTest, DoNotTellTheFirstCurrentOrTheEnd) {
    EXPECT_NE(Line(), lines.next(status(State::Stale, 1)));
    EXPECT_EQ(Line(), lines.next(status(State::Current, 2)));
    EXPECT_EQ(Line(), lines.next(status(State::Stopped, 3)));
}

} // namespace
