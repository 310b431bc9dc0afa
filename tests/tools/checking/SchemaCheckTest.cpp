/// Values against the parts of a JSON Schema.
#include "checking/SchemaCheck.hpp"

#include <connector/configuration/typed/OptionSchema.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>

namespace {

using namespace std::string_literals;
using connector::configuration::ByteSize;
using connector::configuration::inRange;
using connector::configuration::notEmpty;
using connector::configuration::oneOf;
using connector::configuration::OptionSchema;
using connector::configuration::OptionValue;
using connector::service::Secrets;
using connector_config::SchemaCheck;

enum class Level { Debug, Info };

struct Settings {
    bool flag = false;
    int port = 1;
    std::uint64_t big = 0;
    std::int64_t deep = 0;
    double share = 0.5;
    std::string name;
    std::string colour;
    std::chrono::milliseconds timeout{0};
    ByteSize size;
    Level level = Level::Info;
    std::vector<std::string> peers;
    std::vector<int> ports;
};

} // namespace

template <>
struct connector::configuration::OptionNames<Level> {
    static constexpr std::pair<const char*, Level> names[] = {{"debug", Level::Debug},
                                                              {"info", Level::Info}};
};

namespace {

std::string jsonSchema() {
    return OptionSchema<Settings>()
        .option("flag", &Settings::flag, "")
        .option("port", &Settings::port, "", inRange(1, 65535))
        .option("big", &Settings::big, "")
        .option("deep", &Settings::deep, "")
        .option("share", &Settings::share, "", inRange(0.0, 1.0))
        .option("name", &Settings::name, "", notEmpty())
        .option("colour", &Settings::colour, "", oneOf({"red", "green"}))
        .option("timeout", &Settings::timeout, "")
        .option("size", &Settings::size, "")
        .option("level", &Settings::level, "")
        .option("peers", &Settings::peers, "", notEmpty())
        .option("ports", &Settings::ports, "")
        .jsonSchema();
}

/// @return the problem of one value, without the key in front; empty if there is none
std::string problem(const std::string& key, const OptionValue& value) {
    static const SchemaCheck check(jsonSchema(), Secrets());
    const auto problems = check.check({{key, value}});
    EXPECT_LE(problems.size(), 1u);
    return problems.empty() ? "" : problems[0].text.substr(key.size() + 1);
}

TEST(SchemaCheck, AValueThatTheLibraryReadsIsAllowed) {
    const std::pair<const char*, OptionValue> rows[] = {
        {"flag", "yes"s},
        {"flag", true},
        {"port", "65535"s},
        {"port", 1},
        {"big", "18446744073709551615"s},
        {"deep", "-9223372036854775808"s},
        {"share", "1"s},
        {"share", 0.25},
        {"name", "x"s},
        {"colour", "red"s},
        {"timeout", "1m30s"s},
        {"size", "64KiB"s},
        {"level", "INFO"s},
        {"peers", "a, b"s},
        {"peers", std::vector<std::string>{"a"}},
        {"ports", "1, 2"s},
        {"ports", std::vector<int>{1}},
    };
    for (const auto& [key, value] : rows)
        EXPECT_EQ("", problem(key, value)) << key;
}

TEST(SchemaCheck, AValueThatTheLibraryRefusesIsReported) {
    const struct {
        const char* key;
        OptionValue value;
        const char* problem;
    } rows[] = {
        {"flag", "maybe"s, "is not convertible to boolean: \"maybe\""},
        {"port", "0"s, "must be between 1 and 65535: \"0\""},
        {"port", 65536, "must be between 1 and 65535: 65536"},
        {"port", "1.5"s, "is not convertible to integer: \"1.5\""},
        {"port", std::vector<int>{1}, "is not convertible to integer: [1]"},
        {"big", "-1"s, "must be between 0 and 18446744073709551615: \"-1\""},
        {"big", "18446744073709551616"s, "is not convertible to integer: \"18446744073709551616\""},
        {"share", "1.5"s, "must be between 0 and 1: \"1.5\""},
        {"share", std::numeric_limits<double>::quiet_NaN(), "must be between 0 and 1: \"nan\""},
        {"name", ""s, "must not be empty: \"\""},
        {"colour", "blue"s, "must be one of red, green: \"blue\""},
        {"level", "loud"s, "must be one of debug, info: \"loud\""},
        {"peers", ""s, "must not be empty: \"\""},
        {"ports", "1, x"s, "has an element that is not convertible to integer, number 2: \"1, x\""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.problem, problem(row.key, row.value)) << row.key;
    EXPECT_EQ("does not match the pattern of the schema: \"soon\"", problem("timeout", "soon"s));
    EXPECT_EQ("does not match the pattern of the schema: \"64K\"", problem("size", "64K"s));
}

TEST(SchemaCheck, BoundsBeyondSignedNumbersHold) {
    const SchemaCheck check(R"({"properties":{"a":{"minimum":18446744073709551615}}})", Secrets());
    EXPECT_TRUE(check.check({{"a", "18446744073709551615"s}}).empty());
    EXPECT_EQ(1u, check.check({{"a", "-2"s}}).size());
}

TEST(SchemaCheck, ALongValueIsNoDurationAndDoesNoHarm) {
    EXPECT_NE("", problem("timeout", std::string(1'000'000, '1') + "s"));
}

TEST(SchemaCheck, UnknownOptionsHaveSuggestionsNearby) {
    const SchemaCheck check(jsonSchema(), Secrets());
    const auto problems = check.check({{"prot", "1"s}, {"nothing.like.it", "1"s}});
    ASSERT_EQ(2u, problems.size());
    EXPECT_EQ("nothing.like.it is unknown", problems[0].text);
    EXPECT_EQ("prot is unknown, did you mean port?", problems[1].text);
}

TEST(SchemaCheck, UnknownOptionsMayBeAllowed) {
    const SchemaCheck check(R"({"properties":{}})", Secrets());
    EXPECT_TRUE(check.check({{"any", "1"s}}).empty());
}

} // namespace
