#include "ForwardingConfiguration.hpp"
#include "Net.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <atomic>
#include <cmath>
#include <thread>

namespace connector::configuration {

void PrintTo(const OptionProblem& problem, std::ostream* stream) {
    *stream << describe(problem);
}

} // namespace connector::configuration

namespace {

using namespace std::string_literals;
using namespace connector::configuration;
using test::Net;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OptionSchemas : public ::testing::Test {
protected:
    OptionSchemas() { set("net.peers", "a, b"s); }

    void set(const std::string& key, OptionValue value) { configuration->set(key, value).get(); }

    std::vector<std::string> problems(UnknownKeys unknownKeys = UnknownKeys::Allowed) {
        std::vector<std::string> texts;
        for (const OptionProblem& problem : schema.check(*configuration, unknownKeys))
            texts.push_back(describe(problem));
        return texts;
    }

    const OptionSchema<Net> schema = test::netSchema();
    std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
};

TEST_F(OptionSchemas, ReadWhatIsThereAndDefaultsForTheRest) {
    set("net.port", "9090"s);
    set("net.limits.size", "2KiB"s);
    const Net net = schema.read(*configuration);
    EXPECT_EQ(9090, net.port);
    EXPECT_EQ("localhost", net.host);
    EXPECT_EQ(std::chrono::milliseconds(500), net.patience);
    EXPECT_THAT(net.peers, ElementsAre("a", "b"));
    EXPECT_EQ(2048u, net.limits.size.bytes);
    EXPECT_EQ(10, net.limits.count);
}

TEST_F(OptionSchemas, TellAllProblemsAtOnceInTheOrderOfDeclaration) {
    configuration->removeSource("override").get();
    configuration->set("net.limits.count", 11, "default").get();
    configuration->set("net.limits.size", "2MiB"s, "default").get();
    configuration->set("net.password", "hunter2"s, "default").get();
    configuration->set("net.mode", "safe"s, "default").get();
    configuration->set("net.patience", "2m"s, "default").get();
    configuration->set("net.host", ""s, "default").get();
    configuration->set("net.port", "0"s, "default").get();
    const std::string all =
        "net.port from default: must be between 1 and 65535: \"0\"\n"
        "net.host from default: must not be empty\n"
        "net.patience from default: must be between 10ms and 1m30s: \"2m\"\n"
        "net.peers: is required\n"
        "net.mode from default: is not convertible to one of plain, secure: "
        "\"safe\"\n"
        "net.password from default: must be one of changeme, x: ******\n"
        "net.limits.size from default: must be between 1KiB and 1MiB: \"2MiB\"\n"
        "net.limits.count from default: must be one of 10, 20, 30: 11";
    test::expectThrows<InvalidSettings>(all, [this] { schema.read(*configuration); });
    try {
        schema.read(*configuration);
    } catch (const InvalidSettings& invalid) {
        EXPECT_EQ(schema.check(*configuration), invalid.problems());
        EXPECT_EQ((OptionProblem{"net.peers", "", "is required"}), invalid.problems()[3]);
    }
}

TEST_F(OptionSchemas, HideSecretsThatDoNotConvert) {
    set("net.password", std::vector<int>{1});
    EXPECT_THAT(problems(), ElementsAre("net.password from override: is not convertible to string: "
                                        "******"));
}

TEST_F(OptionSchemas, OfSeveralChecksTellTheFirstThatFails) {
    set("net.host", "nowhere"s);
    EXPECT_THAT(problems(), ElementsAre("net.host from override: is nowhere"));
    set("net.host", ""s);
    EXPECT_THAT(problems(), ElementsAre("net.host from override: must not be empty"));
}

TEST_F(OptionSchemas, RunRulesWhenAllOptionsAreGood) {
    set("net.mode", "secure"s);
    set("net.port", 80);
    set("net.limits.size", "1MiB"s);
    set("net.limits.count", 20);
    EXPECT_THAT(problems(), ElementsAre("net.limits: size and count are too much together",
                                        "net: secure wants high ports"));
    set("net.port", 0);
    EXPECT_THAT(problems(), ElementsAre("net.port from override: must be between 1 and 65535: 0"));
}

TEST_F(OptionSchemas, RefuseUnknownKeysAndSuggestTheNearest) {
    set("net.prot", 1);
    set("net.limits.sizes", 1);
    set("net.zzz", 1);
    set("network.port", 1);
    EXPECT_THAT(problems(), IsEmpty());
    EXPECT_THAT(problems(UnknownKeys::Refused),
                ElementsAre("net.limits.sizes from override: is unknown, did you mean "
                            "net.limits.size?",
                            "net.prot from override: is unknown, did you mean net.port?",
                            "net.zzz from override: is unknown"));
    set("net.port", 0);
    EXPECT_EQ(4u, problems(UnknownKeys::Refused).size());
    EXPECT_THROW(schema.read(*configuration, UnknownKeys::Refused), InvalidSettings);
}

TEST_F(OptionSchemas, SuggestTheFirstDeclaredAmongEquals) {
    struct Pair {
        int left = 0, right = 0;
    };
    const auto pair =
        OptionSchema<Pair>().option("bx", &Pair::left, "").option("ax", &Pair::right, "");
    set("cx", 1);
    set("bxyz", 1);
    set("bxyzz", 1);
    const auto found = pair.check(*configuration, UnknownKeys::Refused);
    ASSERT_EQ(4u, found.size());
    EXPECT_EQ("is unknown, did you mean bx?", found[0].text); // bxyz: 2 apart
    EXPECT_EQ("is unknown", found[1].text);                   // bxyzz: 3 apart
    EXPECT_EQ("is unknown, did you mean bx?", found[2].text); // cx: 1 from both
    EXPECT_EQ("net.peers", found[3].key);                     // all keys are below no prefix
}

TEST_F(OptionSchemas, ARuleWithoutAPrefixHasNoKey) {
    struct Number {
        int number = 0;
    };
    const auto bad =
        OptionSchema<Number>().option("number", &Number::number, "").rule([](const Number&) {
            return "never good"s;
        });
    test::expectThrows<InvalidSettings>("never good", [&] { bad.read(*configuration); });
}

TEST_F(OptionSchemas, RefuseWhatIsDeclaredWrongly) {
    OptionSchema<Net> twice("net");
    twice.option("port", &Net::port, "");
    test::expectThrows<std::invalid_argument>("Option declared twice: port",
                                              [&] { twice.required("port", &Net::port, ""); });
    test::expectThrows<std::invalid_argument>("A declared option needs a name.",
                                              [&] { twice.option("", &Net::port, ""); });
    test::expectThrows<std::invalid_argument>(
        "The schema of a group must not have a prefix: x",
        [&] { twice.group("limits", &Net::limits, OptionSchema<test::Limits>("x")); });
    twice.option("limits.size", &Net::port, "");
    test::expectThrows<std::invalid_argument>("Option declared twice: limits.size", [&] {
        twice.group("limits", &Net::limits, test::limitsSchema());
    });
}

TEST_F(OptionSchemas, ComparesNumbersOfAnyKindInRanges) {
    struct Numbers {
        unsigned count = 5;
        std::int8_t small = 0;
        double ratio = 0.5;
        std::chrono::seconds wait{1};
    };
    const auto numbers =
        OptionSchema<Numbers>()
            .option("count", &Numbers::count, "", inRange(-1, 10))
            .option("small", &Numbers::small, "", inRange(-1000, 5u))
            .option("ratio", &Numbers::ratio, "", inRange(0, 1.5))
            .option("wait", &Numbers::wait, "",
                    inRange(std::chrono::milliseconds(500), std::chrono::hours(1)));
    set("count", 4294967295u);
    set("small", 6);
    set("ratio", std::nan(""));
    set("wait", "61m"s);
    const auto found = numbers.check(*configuration);
    ASSERT_EQ(4u, found.size());
    EXPECT_EQ("must be between -1 and 10: 4294967295", found[0].text);
    EXPECT_EQ("must be between -1000 and 5: 6", found[1].text);
    EXPECT_EQ("must be between 0 and 1.5: nan", found[2].text);
    EXPECT_EQ("must be between 500ms and 1h: \"61m\"", found[3].text);
}

TEST_F(OptionSchemas, ReadOneMoment) {
    struct Pair {
        int one = 0, two = 0;
    };
    const auto pair =
        OptionSchema<Pair>("pair").option("one", &Pair::one, "").option("two", &Pair::two, "");
    std::atomic<bool> isOver{false};
    std::thread writer([&] {
        for (int i = 0; !isOver; ++i) {
            set("pair.one", i);
            set("pair.two", i);
        }
    });
    for (int i = 0; i < 2000; ++i) {
        const Pair now =
            pair.read(*configuration, i % 2 == 0 ? UnknownKeys::Allowed : UnknownKeys::Refused);
        EXPECT_TRUE(now.one - now.two == 0 || now.one - now.two == 1) << now.one << ' ' << now.two;
    }
    isOver = true;
    writer.join();
}

TEST_F(OptionSchemas, ReadOtherConfigurationsOptionByOption) {
    test::ForwardingConfiguration other(configuration);
    set("net.port", 0);
    set("net.prot", 1);
    EXPECT_EQ(schema.check(*configuration), schema.check(other));
    EXPECT_EQ(schema.check(*configuration, UnknownKeys::Refused),
              schema.check(other, UnknownKeys::Refused));
    EXPECT_EQ(2u, schema.check(other, UnknownKeys::Refused).size());
}

} // namespace
