#include "Net.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/CommandLine.hpp>

namespace {

using namespace std::string_literals;
using namespace connector::configuration;
using test::Net;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class CommandLine : public ::testing::Test {
protected:
    CommandLine() { addOptions(application, schema, configuration); }

    void parse(std::vector<std::string> arguments) {
        std::reverse(arguments.begin(), arguments.end());
        application.parse(arguments);
    }

    const OptionSchema<Net> schema = test::netSchema();
    std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    CLI::App application{"a daemon"};
};

TEST_F(CommandLine, WritesWhatWasGivenIntoOverride) {
    bool ownCallback = false;
    application.final_callback([&ownCallback] { ownCallback = true; });
    parse({"--net.port", "9090", "--net.peers=a, b"});
    EXPECT_EQ((std::set<std::string>{"net.peers", "net.port"}), configuration->keys().get());
    EXPECT_EQ("override", configuration->getOption("net.port").get().source);
    EXPECT_EQ(9090, schema.read(*configuration).port);
    EXPECT_THAT(schema.read(*configuration).peers, ElementsAre("a", "b"));
    EXPECT_TRUE(ownCallback);
}

TEST_F(CommandLine, WritesNothingWhenNothingWasGiven) {
    parse({});
    EXPECT_TRUE(configuration->keys().get().empty());
}

TEST_F(CommandLine, ChecksWhileParsingAndWritesAllOrNothing) {
    test::expectThrows<CLI::ValidationError>("--net.host: must not be empty", [this] {
        parse({"--net.port", "9090", "--net.host", ""});
    });
    test::expectThrows<CLI::ValidationError>("--net.port: is not convertible to int: \"x\"",
                                             [this] {
                                                 parse({"--net.port", "x"});
                                             });
    test::expectThrows<CLI::ValidationError>(
        "--net.limits.size: must be between 1KiB and 1MiB: \"1\"", [this] {
            parse({"--net.limits.size", "1"});
        });
    EXPECT_THROW(parse({"--net.port", "9090", "--net.prot", "1"}), CLI::ExtrasError);
    EXPECT_TRUE(configuration->keys().get().empty());
}

TEST_F(CommandLine, HelpHasDescriptionsAndDefaults) {
    const std::string help = application.help();
    EXPECT_THAT(help, HasSubstr("--net.port"));
    EXPECT_THAT(help, HasSubstr("TCP port to listen on"));
    EXPECT_THAT(help, HasSubstr("8080"));
    EXPECT_THAT(help, HasSubstr("500ms"));
    EXPECT_THAT(help, ::testing::Not(HasSubstr("changeme")));
}

TEST_F(CommandLine, OutlivesTheSchemaItWasGiven) {
    CLI::App other;
    addOptions(other, test::limitsSchema(), configuration);
    other.parse("--count 20");
    EXPECT_EQ(20, boost::get<int>(OptionValue(optionCast<int>(configuration->get("count").get()))));
    EXPECT_THROW(addOptions(other, test::limitsSchema(), nullptr), std::invalid_argument);
}

} // namespace
