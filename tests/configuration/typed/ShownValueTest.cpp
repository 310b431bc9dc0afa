/// How messages show a value: as the JSON form writes it.
#include "support/Expect.hpp"

#include <connector/configuration/json/OptionValueJson.hpp>
#include <connector/configuration/typed/BadOptionCast.hpp>

#include <Poco/JSON/Stringifier.h>

#include <cmath>
#include <cstring>
#include <random>
#include <sstream>

namespace {

using namespace std::string_literals;
using connector::configuration::BadOptionCast;
using connector::configuration::OptionValue;

const std::string beforeValue = "Option value is not convertible to TYPE: ";

std::string shown(const OptionValue& value) {
    return std::string(BadOptionCast("TYPE", value).what()).substr(beforeValue.size());
}

std::string json(const OptionValue& value) {
    std::ostringstream stream;
    Poco::JSON::Stringifier::stringify(
        connector::configuration::fromOptionValue(value)->get("value"), stream);
    return stream.str();
}

double randomDouble(std::mt19937_64& random) {
    const std::uint64_t bits = random();
    double number = 0;
    if (random() % 2 == 0)
        return static_cast<double>(static_cast<std::int64_t>(bits) >> (bits % 64)) / 1000;
    std::memcpy(&number, &bits, sizeof(number));
    return number;
}

std::string randomText(std::mt19937_64& random) {
    std::string text;
    for (auto length = random() % 20; length > 0; --length)
        text += static_cast<char>(random() % 128);
    return text + (random() % 2 == 0 ? "\xC3\xA4\xF0\x9F\x98\x80" : "");
}

TEST(ShownValue, IsThePayloadOfTheJsonForm) {
    const auto seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937_64 random(seed);
    for (int i = 0; i < 20000; ++i) {
        const std::string text = randomText(random);
        const double number = randomDouble(random);
        for (const OptionValue& value : std::vector<OptionValue>{
                 number, text, std::vector<double>{number, 1, -number},
                 std::vector<std::string>{text, "", text}, static_cast<int>(random()),
                 static_cast<unsigned>(random()), std::vector<bool>{true, false},
                 std::vector<int>{}, std::u16string(u"\u00E4\U0001F600")})
            ASSERT_EQ(json(value), shown(value));
    }
}

TEST(ShownValue, NumbersHaveTheirShortestForm) {
    EXPECT_EQ("0.1", shown(0.1));
    EXPECT_EQ("0", shown(-0.0));
    EXPECT_EQ("1e+15", shown(1e15));
    EXPECT_EQ("123456789012345", shown(123456789012345.0));
    EXPECT_EQ("0.000001", shown(1e-6));
    EXPECT_EQ("5e-324", shown(5e-324));
    EXPECT_EQ("-inf", shown(-HUGE_VAL));
    EXPECT_EQ("nan", shown(std::nan("")));
}

TEST(ShownValue, BytesThatAreNoUtf8BecomeReplacementCharacters) {
    const std::string replacement = "\xEF\xBF\xBD";
    EXPECT_EQ('"' + replacement + "a\"", shown("\xFF"
                                               "a"s));
    EXPECT_EQ('"' + replacement + replacement + '"', shown("\xE2\x82"s)); // cut short
    EXPECT_EQ('"' + replacement + replacement + '"', shown("\xC0\x80"s)); // overlong
    EXPECT_EQ('"' + replacement + replacement + replacement + '"', shown("\xED\xA0\x80"s));
    EXPECT_EQ("\"\xE2\x82\xAC" + replacement + '"', shown("\xE2\x82\xAC\xE2"s));
    EXPECT_EQ('"' + replacement + "x\xC3\xA4\"", shown(u"\xD83Dx\u00E4"s));
    EXPECT_EQ('"' + replacement + replacement + '"', shown(u"\xDE00\xD83D"s));
    EXPECT_EQ("[\"" + replacement + "\"]", shown(std::vector<std::u16string>{u"\xD83D"}));
}

} // namespace
