#include <connector/configuration/OptionValue.hpp>

#include <boost/variant/get.hpp>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace {

using connector::configuration::OptionValue;

struct Row {
    int line;
    OptionValue value;
    int index;
};

const Row rows[] = {
    {__LINE__, true, 0},
    {__LINE__, -7, 1},
    {__LINE__, 7u, 2},
    {__LINE__, 0.5, 3},
    {__LINE__, std::u16string(u"text"), 4},
    {__LINE__, std::string("text"), 5},
    {__LINE__, std::vector<bool>{true}, 6},
    {__LINE__, std::vector<int>{-7}, 7},
    {__LINE__, std::vector<unsigned int>{7}, 8},
    {__LINE__, std::vector<double>{0.5}, 9},
    {__LINE__, std::vector<std::string>{"text"}, 10},     // 8-bit before UTF-16 among the vectors,
    {__LINE__, std::vector<std::u16string>{u"text"}, 11}, // the other way round among the scalars
};

TEST(OptionValue, HasTwelveAlternativesInAFixedOrder) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.index, row.value.which());
    }
    EXPECT_EQ(12, boost::mpl::size<OptionValue::types>::value);
}

TEST(OptionValue, HoldsIntegersOf32BitsAndDoublesOf64) {
    EXPECT_EQ(4u, sizeof(boost::get<int>(rows[1].value)));
    EXPECT_EQ(4u, sizeof(boost::get<unsigned int>(rows[2].value)));
    EXPECT_EQ(8u, sizeof(boost::get<double>(rows[3].value)));
}

TEST(OptionValue, IsFalseByDefault) {
    const OptionValue value;
    EXPECT_EQ(0, value.which());
    EXPECT_FALSE(boost::get<bool>(value));
}

TEST(OptionValue, FromAStringLiteralHoldsABool) {
    const OptionValue value("text");
    EXPECT_EQ(0, value.which());
    EXPECT_TRUE(boost::get<bool>(value));
}

TEST(OptionValue, IsCopiedWithItsAlternative) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.line);
        const OptionValue copy(row.value);
        EXPECT_EQ(row.index, copy.which());
        EXPECT_TRUE(copy == row.value);
    }
}

TEST(OptionValue, CanBeAssignedAnyOtherAlternative) {
    for (const Row& from : rows) {
        for (const Row& to : rows) {
            SCOPED_TRACE(std::to_string(from.line) + " to " + std::to_string(to.line));
            OptionValue value = from.value;
            value = to.value;
            EXPECT_EQ(to.index, value.which());
            EXPECT_TRUE(value == to.value);
        }
    }
}

TEST(OptionValue, SharesNoStringWithItsCopy) {
    const OptionValue original = std::string("a text too long for the small-string optimisation");
    OptionValue copy = original;
    boost::get<std::string>(copy)[0] = 'A';
    EXPECT_EQ("a text too long for the small-string optimisation",
              boost::get<std::string>(original));
}

TEST(OptionValue, SharesNoVectorWithItsCopy) {
    const OptionValue original = std::vector<int>{1, 2, 3};
    OptionValue copy = original;
    boost::get<std::vector<int>>(copy)[0] = 9;
    EXPECT_EQ((std::vector<int>{1, 2, 3}), boost::get<std::vector<int>>(original));
}

TEST(OptionValue, SharesNothingWithTheAssignedValue) {
    const OptionValue original = std::vector<std::u16string>{u"a", u"b"};
    OptionValue assigned;
    assigned = original;
    boost::get<std::vector<std::u16string>>(assigned).clear();
    EXPECT_EQ(2u, boost::get<std::vector<std::u16string>>(original).size());
}

TEST(OptionValue, KeepsEveryByteOfAnEightBitString) {
    const std::string bytes("\0\xff\xc3\x80 \n", 6);
    EXPECT_EQ(bytes, boost::get<std::string>(OptionValue(bytes)));
}

} // namespace
