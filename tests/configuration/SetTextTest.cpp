/// Text that is set from literals and pointers.
#include "support/Expect.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

namespace {

using namespace std::string_literals;
using namespace connector::configuration;

class SetText : public ::testing::Test {
protected:
    OptionValue value() { return configuration->get("key").get(); }

    std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
};

TEST_F(SetText, LiteralsAndPointersAreStoredAsText) {
    configuration->set("key", "literal").get();
    EXPECT_TRUE(OptionValue("literal"s) == value());
    const char* const pointer = "pointer";
    configuration->set("key", pointer).get();
    EXPECT_TRUE(OptionValue("pointer"s) == value());
    char buffer[] = "buffer";
    configuration->set("key", buffer).get();
    EXPECT_TRUE(OptionValue("buffer"s) == value());
    configuration->set("key", u"wide").get();
    EXPECT_TRUE(OptionValue(u"wide"s) == value());
}

TEST_F(SetText, GoesToTheNamedSource) {
    configuration->set("key", "text", "default").get();
    EXPECT_EQ("default", configuration->getOption("key").get().source);
    EXPECT_TRUE(OptionValue("text"s) == value());
    test::expectThrows<std::runtime_error>(
        "Source not found or not writable: key, nowhere",
        [this] { configuration->set("key", "text", "nowhere").get(); });
}

TEST_F(SetText, IsThereInTheInterface) {
    Configuration& interface = *configuration;
    interface.set("key", "text").get();
    EXPECT_TRUE(OptionValue("text"s) == value());
    interface.set("key", "other", "override").get();
    EXPECT_TRUE(OptionValue("other"s) == value());
}

TEST_F(SetText, OtherTypesStayWhatTheyAre) {
    configuration->set("key", 0).get();
    EXPECT_TRUE(OptionValue(0) == value());
    configuration->set("key", 0, "override").get();
    EXPECT_TRUE(OptionValue(0) == value());
    configuration->set("key", true).get();
    EXPECT_TRUE(OptionValue(true) == value());
    configuration->set("key", "text"s).get();
    EXPECT_TRUE(OptionValue("text"s) == value());
    configuration->set("key", {}).get();
    EXPECT_TRUE(OptionValue(false) == value());
}

TEST_F(SetText, ANullPointerIsNoText) {
    const char* const text = nullptr;
    test::expectThrows<std::invalid_argument>("A null text cannot be stored.",
                                              [&] { configuration->set("key", text).get(); });
    EXPECT_FALSE(configuration->has("key").get());
}

} // namespace
