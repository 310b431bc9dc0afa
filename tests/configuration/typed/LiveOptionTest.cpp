#include "support/Expect.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/LiveOption.hpp>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using namespace connector::configuration;
using test::expectThrows;

struct Color {
    unsigned char red, green, blue; // three bytes: no atomic of the processor's
    bool operator==(const Color& other) const {
        return red == other.red && green == other.green && blue == other.blue;
    }
};

} // namespace

template <>
struct connector::configuration::OptionConverter<Color> {
    static Color convert(const OptionValue& value) {
        const auto parts = optionCast<std::vector<unsigned char>>(value);
        return {parts.at(0), parts.at(1), parts.at(2)};
    }
    static std::string typeName() { return "color"; }
};

namespace {

class LiveOptions : public ::testing::Test {
protected:
    void set(OptionValue value) { configuration->set("key", std::move(value)).get(); }

    std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
};

TEST_F(LiveOptions, HasTheNewestValue) {
    set(1);
    const LiveOption<int> live(configuration, "key");
    EXPECT_EQ(1, live.get());
    EXPECT_EQ(1u, live.version());
    set("2"s);
    EXPECT_EQ(2, live.get());
    EXPECT_EQ(2, *live.snapshot());
    EXPECT_EQ(2u, live.version());
    set(2);
    EXPECT_EQ(2u, live.version());
    EXPECT_EQ(std::nullopt, live.problem());
}

TEST_F(LiveOptions, ASnapshotStaysAsItIs) {
    set("a"s);
    const LiveOption<std::string> live(configuration, "key");
    const auto snapshot = live.snapshot();
    set("b"s);
    EXPECT_EQ("a", *snapshot);
    EXPECT_EQ("b", live.get());
    EXPECT_EQ("b", *live.snapshot());
}

TEST_F(LiveOptions, WithoutAFallbackTheOptionMustBeThereAndConvert) {
    expectThrows<std::runtime_error>("No option with the specified key was found: key",
                                     [this] { LiveOption<int>(configuration, "key"); });
    set("x"s);
    expectThrows<InvalidOption>("Option key from source override is not convertible to int: \"x\"",
                                [this] { LiveOption<int>(configuration, "key"); });
    expectThrows<std::invalid_argument>("A null configuration cannot be followed.",
                                        [] { LiveOption<int>(nullptr, "key"); });
}

TEST_F(LiveOptions, AFallbackHoldsUntilThereIsAValue) {
    const LiveOption<int> live(configuration, "key", 7);
    EXPECT_EQ(7, live.get());
    EXPECT_EQ(0u, live.version());
    EXPECT_EQ(std::nullopt, live.problem());
    set(7);
    EXPECT_EQ(7, live.get());
    EXPECT_EQ(1u, live.version());
}

TEST_F(LiveOptions, AFirstValueThatDoesNotConvertGivesTheFallbackAndAProblem) {
    set("x"s);
    const LiveOption<std::string> text(configuration, "key", "fallback");
    const LiveOption<int> live(configuration, "key", 7);
    EXPECT_EQ("x", text.get());
    EXPECT_EQ(7, live.get());
    ASSERT_NE(std::nullopt, live.problem());
    EXPECT_STREQ("Option key from source override is not convertible to int: \"x\"",
                 live.problem()->what());
}

TEST_F(LiveOptions, TheLastGoodValueStaysWithAProblemUntilAGoodOneComes) {
    set(1);
    const LiveOption<int> live(configuration, "key");
    set("x"s);
    set("y"s);
    EXPECT_EQ(1, live.get());
    EXPECT_EQ(1u, live.version());
    ASSERT_NE(std::nullopt, live.problem());
    EXPECT_STREQ("Option key from source override is not convertible to int: \"y\"",
                 live.problem()->what());
    set(1);
    EXPECT_EQ(std::nullopt, live.problem());
    EXPECT_EQ(1u, live.version());
}

TEST_F(LiveOptions, EveryTypeAndSizeCanLive) {
    configuration->set("color", "1, 2, 3"s).get();
    const LiveOption<Color> color(configuration, "color");
    configuration->set("color", "4, 5, 6"s).get();
    EXPECT_EQ((Color{4, 5, 6}), color.get());
    EXPECT_EQ((Color{4, 5, 6}), *color.snapshot());
    using std::chrono::milliseconds;
    EXPECT_EQ(milliseconds(5), LiveOption<milliseconds>(configuration, "x", milliseconds(5)).get());
    EXPECT_TRUE(LiveOption<bool>(configuration, "x", true).get());
    EXPECT_EQ(1.5, LiveOption<double>(configuration, "x", 1.5).get());
    EXPECT_EQ((std::vector<int>{1}),
              LiveOption<std::vector<int>>(configuration, "x", std::vector<int>{1}).get());
}

TEST_F(LiveOptions, CopiesShareTheValueAndOutliveTheConfiguration) {
    set(1);
    std::optional<LiveOption<int>> first(std::in_place, configuration, "key");
    const LiveOption<int> second(*first);
    const LiveOption<int> third(std::move(*first));
    EXPECT_EQ(1, first->get()); // there is no empty one
    first.reset();
    set(2);
    EXPECT_EQ(2, second.get());
    EXPECT_EQ(2, third.get());
    const std::weak_ptr<Configuration> alive = configuration;
    configuration.reset();
    EXPECT_TRUE(alive.expired());
    EXPECT_EQ(2, second.get());
}

} // namespace
