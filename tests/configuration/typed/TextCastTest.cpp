/// Text, paths, enumerations, lists and types of the application's.
#include "CastTable.hpp"

#include <array>
#include <filesystem>
#include <string_view>
#include <utility>

namespace test {

enum class Level { Quiet, Normal, Loud };

struct Point {
    int x;
    int y;
    bool operator==(const Point& other) const { return x == other.x && y == other.y; }
};

} // namespace test

template <>
struct connector::configuration::OptionNames<test::Level> {
    static constexpr std::array<std::pair<std::string_view, test::Level>, 4> names{
        {{"quiet", test::Level::Quiet},
         {"normal", test::Level::Normal},
         {"loud", test::Level::Loud},
         {"noisy", test::Level::Loud}}};
};

template <>
struct connector::configuration::OptionConverter<test::Point> {
    static test::Point convert(const OptionValue& value) {
        const auto numbers = optionCast<std::vector<int>>(value);
        return {numbers.at(0), numbers.at(1)};
    }
    static std::string typeName() { return "point"; }
};

namespace {

using namespace std::string_literals;
using test::BadOptionCast;
using test::expectCast;
using test::expectTable;
using test::Level;
using test::optionCast;
using test::OptionValue;
using test::Point;

constexpr auto no = std::nullopt;

TEST(TextCast, EightBitTextComesFromEveryScalar) {
    expectTable<std::string>({{__LINE__, "a b"s, "a b"s},
                              {__LINE__, ""s, ""s},
                              {__LINE__, u"\u00E4\U0001F600"s, "\xC3\xA4\xF0\x9F\x98\x80"s},
                              {__LINE__, u"\xD83D"s, no},
                              {__LINE__, true, "true"s},
                              {__LINE__, false, "false"s},
                              {__LINE__, -7, "-7"s},
                              {__LINE__, 4294967295u, "4294967295"s},
                              {__LINE__, 0.1, "0.1"s},
                              {__LINE__, 1e300, "1e+300"s},
                              {__LINE__, -0.0, "-0"s}},
                             "string", "stringArray");
    const std::string bytes = "\xFF\0x"s; // 8-bit text is any bytes
    EXPECT_EQ(bytes, optionCast<std::string>(bytes));
}

TEST(TextCast, WideTextComesFromEveryScalar) {
    expectTable<std::u16string>({{__LINE__, "\xC3\xA4"s, u"\u00E4"s},
                                 {__LINE__, "\xC3"s, no},
                                 {__LINE__, u"x"s, u"x"s},
                                 {__LINE__, true, u"true"s},
                                 {__LINE__, 12, u"12"s},
                                 {__LINE__, 12u, u"12"s},
                                 {__LINE__, 1.5, u"1.5"s}},
                                "ustring", "ustringArray");
    EXPECT_EQ(u"\xD83D"s, optionCast<std::u16string>(u"\xD83D"s)); // it is what it is
}

TEST(TextCast, ListsAreNoText) {
    expectCast<std::string>(std::vector<std::string>{"a"}, no, "string");
    expectCast<std::u16string>(std::vector<std::u16string>{u"a"}, no, "ustring");
}

TEST(PathCast, TakesTextInUtf8ThatIsNotEmpty) {
    expectTable<std::filesystem::path>({{__LINE__, "/etc/a b"s, "/etc/a b"},
                                        {__LINE__, "\xC3\xA4"s, "\xC3\xA4"},
                                        {__LINE__, "\xC3"s, no},
                                        {__LINE__, u"\xD83D"s, no},
                                        {__LINE__, ""s, no},
                                        {__LINE__, 1, no},
                                        {__LINE__, true, no}},
                                       "path", "list of path");
}

TEST(EnumerationCast, TakesItsNamesInAnyCase) {
    expectTable<Level>({{__LINE__, "quiet"s, Level::Quiet},
                        {__LINE__, "LOUD"s, Level::Loud},
                        {__LINE__, "Noisy"s, Level::Loud},
                        {__LINE__, ""s, no},
                        {__LINE__, "quie"s, no},
                        {__LINE__, "quiet "s, no},
                        {__LINE__, 0, no},
                        {__LINE__, true, no}},
                       "one of quiet, normal, loud, noisy",
                       "list of one of quiet, normal, loud, noisy");
}

TEST(ConverterCast, IsTheApplicationsAndAnyExceptionOfItRefuses) {
    EXPECT_EQ((Point{1, 2}), optionCast<Point>("1, 2"s));
    EXPECT_EQ((Point{3, 4}), optionCast<Point>(std::vector<int>{3, 4}));
    expectCast<Point>("1"s, no, "point");    // std::out_of_range
    expectCast<Point>("1, x"s, no, "point"); // BadOptionCast
    expectCast<std::vector<Point>>("1, x"s, no, "list of point");
}

TEST(ListCast, TextIsItemsBetweenCommas) {
    using List = std::vector<std::string>;
    const std::vector<std::pair<std::string, List>> table{
        {"", {}},
        {" ", {""}},
        {"\t \t", {""}},
        {"a", {"a"}},
        {" a\t", {"a"}},
        {"a b", {"a b"}},
        {"a,b", {"a", "b"}},
        {" a , b ", {"a", "b"}},
        {"a,,b", {"a", "", "b"}},
        {"a,", {"a", ""}},
        {",", {"", ""}},
        {"a\\,b", {"a,b"}},
        {"a\\\\,b", {"a\\", "b"}},
        {"\\ a\\ ", {" a "}},
        {"\\\ta", {"\ta"}},
        {"a\\  ", {"a "}},
        {"\\  ", {" "}},
        {"\\e", {""}},
        {" \\e ", {""}},
        {"\\e,\\e", {"", ""}},
        {"\\\\e", {"\\e"}},
        {"\\ex", {"\\ex"}},
        {"x\\e", {"x\\e"}},
        {"\\ \\e", {" \\e"}},
        {"\\n", {"\\n"}},
        {"a\\", {"a\\"}},
        {"\\", {"\\"}},
        {"\\\\", {"\\"}},
        {"\xFF,b", {"\xFF", "b"}}, // any bytes
    };
    for (const auto& [text, items] : table) {
        SCOPED_TRACE("'" + text + "'");
        EXPECT_EQ(items, optionCast<List>(text));
        if (const auto wide = test::utf16(text)) {
            EXPECT_EQ(items, optionCast<List>(*wide));
        }
    }
}

TEST(ListCast, ConvertsElementByElement) {
    EXPECT_EQ((std::vector<int>{1, 31}), optionCast<std::vector<int>>("1, 0x1F"s));
    EXPECT_EQ((std::vector<int>{1, 2}), optionCast<std::vector<int>>(std::vector<double>{1, 2}));
    EXPECT_EQ((std::vector<bool>{true, false}),
              optionCast<std::vector<bool>>(std::vector<std::string>{"on", "off"}));
    EXPECT_EQ((std::vector<std::string>{"true"}),
              optionCast<std::vector<std::string>>(std::vector<bool>{true}));
    EXPECT_EQ((std::vector<std::u16string>{u"1", u"2"}),
              optionCast<std::vector<std::u16string>>(std::vector<unsigned int>{1, 2}));
    EXPECT_TRUE(optionCast<std::vector<int>>(std::vector<std::u16string>{}).empty());
}

TEST(ListCast, ScalarsAreNoLists) {
    expectCast<std::vector<int>>(1, no, "intArray");
    expectCast<std::vector<bool>>(true, no, "boolArray");
    expectCast<std::vector<unsigned int>>(1u, no, "uintArray");
    expectCast<std::vector<double>>(1.5, no, "doubleArray");
    expectCast<std::vector<signed char>>(1, no, "list of int8");
    expectCast<std::vector<int>>(u"\xD83D"s, no, "intArray");
}

TEST(ListCast, ARefusedListIsShownWhole) {
    test::expectThrows<
        BadOptionCast>("Option value is not convertible to intArray: [\"1\",\"x\",\"3\"]", [] {
        static_cast<void>(optionCast<std::vector<int>>(std::vector<std::string>{"1", "x", "3"}));
    });
    test::expectThrows<BadOptionCast>(
        "Option value is not convertible to list of uint8: \"1, 256\"",
        [] { static_cast<void>(optionCast<std::vector<unsigned char>>("1, 256"s)); });
}

} // namespace
