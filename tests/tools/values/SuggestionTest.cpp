/// What is suggested for a mistyped word.
#include "values/Suggestion.hpp"

#include "values/EditDistance.hpp"

#include <gtest/gtest.h>

namespace {

using connector_config::editDistance;
using connector_config::suggestion;

TEST(EditDistance, IsAsItIsCountedByHand) {
    EXPECT_EQ(0u, editDistance("abc", "abc", 3));
    EXPECT_EQ(1u, editDistance("abc", "abd", 3));
    EXPECT_EQ(1u, editDistance("abc", "ab", 3));
    EXPECT_EQ(2u, editDistance("port", "prot", 3));
    EXPECT_EQ(2u, editDistance("", "ab", 3));
    EXPECT_EQ(3u, editDistance("abc", "xyz", 3));
    EXPECT_EQ(3u, editDistance("abc", "abcdefg", 3));
    EXPECT_EQ(3u, editDistance("kitten", "sitting", 4));
}

TEST(Suggestion, IsTheNearestCandidateWithinTwoEdits) {
    EXPECT_EQ(", did you mean get?", suggestion("gte", {"set", "get", "gets"}));
    EXPECT_EQ(", did you mean show?", suggestion("shw", {"get", "show"}));
    EXPECT_EQ("", suggestion("fetching", {"get", "watch"}));
    EXPECT_EQ("", suggestion("get", {}));
}

} // namespace
