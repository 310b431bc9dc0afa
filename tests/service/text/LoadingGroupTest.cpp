#include <connector/service/text/LoadingGroup.hpp>

#include <gtest/gtest.h>

#include <thread>

namespace {

using connector::service::LoadingGroup;

TEST(LoadingGroup, IsEmptyByDefault) {
    EXPECT_EQ("", LoadingGroup::prefix());
}

TEST(LoadingGroup, EndsWithADotUnlessEmpty) {
    EXPECT_EQ("net.", (LoadingGroup("net"), LoadingGroup::prefix()));
    EXPECT_EQ("net.", (LoadingGroup("net."), LoadingGroup::prefix()));
    EXPECT_EQ("", (LoadingGroup(""), LoadingGroup::prefix()));
}

TEST(LoadingGroup, IsRestoredAtTheEnd) {
    const LoadingGroup outer("outer");
    {
        const LoadingGroup inner("inner");
        EXPECT_EQ("inner.", LoadingGroup::prefix());
    }
    EXPECT_EQ("outer.", LoadingGroup::prefix());
}

TEST(LoadingGroup, BelongsToItsThread) {
    const LoadingGroup loading("net");
    std::thread([] { EXPECT_EQ("", LoadingGroup::prefix()); }).join();
}

} // namespace
