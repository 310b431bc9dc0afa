/// The registered sources: their order, names and groups.
#include "configuration/Answers.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/sources/InMemorySource.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::InMemorySource;
using connector::configuration::OptionValue;
using connector::configuration::SourceAnswer;
using test::expectThrows;
using test::has;
using test::intOf;
using test::makeConfiguration;
using test::sourcesOf;
using test::supplierOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int largestOrder = std::numeric_limits<std::int32_t>::max();

void add(ConfigurationImpl& configuration, const std::string& name, int order) {
    EXPECT_TRUE(configuration.addInMemorySource(name, "", order, false, {{"key", order}}).get());
}

/// A configuration with one more source, which has this group and the entry port = 80.
std::shared_ptr<ConfigurationImpl> withGroup(const std::string& group) {
    auto configuration = makeConfiguration();
    configuration->addInMemorySource("grouped", group, 5, false, {{"port", 80}}).get();
    return configuration;
}

TEST(SourceRegistry, StartsWithOverrideAndDefault) {
    const auto configuration = makeConfiguration();
    const std::vector<SourceAnswer> sources = configuration->explain("key");
    ASSERT_EQ(2u, sources.size());
    EXPECT_EQ("override", sources[0].name);
    EXPECT_EQ("", sources[0].group);
    EXPECT_EQ(0, sources[0].order);
    EXPECT_FALSE(sources[0].readOnly);
    EXPECT_EQ("default", sources[1].name);
    EXPECT_EQ("", sources[1].group);
    EXPECT_EQ(2147483647, sources[1].order);
    EXPECT_FALSE(sources[1].readOnly);
}

TEST(SourceRegistry, StartsWithoutOptions) {
    EXPECT_THAT(makeConfiguration()->keys().get(), IsEmpty());
}

TEST(SourceRegistry, ConsultsSmallerOrdersFirstAndTheLatestAmongEquals) {
    const auto configuration = makeConfiguration();
    add(*configuration, "a", 5);
    add(*configuration, "b", 5);
    add(*configuration, "c", -1);
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("c", "override", "b", "a", "default"));
}

TEST(SourceRegistry, LooksUpInTheOrderOfConsultation) {
    const auto configuration = makeConfiguration();
    add(*configuration, "a", 5);
    add(*configuration, "b", 5);
    add(*configuration, "c", -1);
    configuration->set("key", 0, "override").get();
    configuration->set("key", 9, "default").get();
    for (const std::string name : {"c", "override", "b", "a", "default"}) {
        EXPECT_EQ(name, supplierOf(*configuration, "key"));
        configuration->removeSource(name).get();
    }
    EXPECT_FALSE(has(*configuration, "key"));
}

TEST(SourceRegistry, PutsANewSourceBeforeOthersOfTheSameOrder) {
    const auto configuration = makeConfiguration();
    for (const std::string name : {"1a", "1b", "1c"})
        add(*configuration, name, 1);
    add(*configuration, "2", 2);
    add(*configuration, "1d", 1);
    EXPECT_THAT(sourcesOf(*configuration),
                ElementsAre("override", "1d", "1c", "1b", "1a", "2", "default"));
}

TEST(SourceRegistry, PutsANewSourceBeforeABuiltInOneOfTheSameOrder) {
    const auto configuration = makeConfiguration();
    add(*configuration, "last", largestOrder);
    add(*configuration, "zero", 0);
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("zero", "override", "last", "default"));
}

TEST(SourceRegistry, SupportsTheSmallestOrder) {
    const auto configuration = makeConfiguration();
    add(*configuration, "negative", -1);
    add(*configuration, "smallest", std::numeric_limits<std::int32_t>::min());
    EXPECT_THAT(sourcesOf(*configuration),
                ElementsAre("smallest", "negative", "override", "default"));
}

TEST(SourceRegistry, KeepsTheOrderOfTheOthersOnRemoval) {
    const auto configuration = makeConfiguration();
    for (const std::string name : {"a", "b", "c"})
        add(*configuration, name, 5);
    EXPECT_TRUE(configuration->removeSource("b").get());
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override", "c", "a", "default"));
}

TEST(SourceRegistry, ServesTheKeysOfAGroupOnly) {
    const auto configuration = withGroup("net");
    EXPECT_TRUE(has(*configuration, "net.port"));
    EXPECT_FALSE(has(*configuration, "port"));
    EXPECT_EQ(80, intOf(*configuration, "net.port"));
}

TEST(SourceRegistry, AcceptsAGroupThatEndsInADot) {
    const auto configuration = withGroup("net.");
    EXPECT_TRUE(has(*configuration, "net.port"));
    EXPECT_FALSE(has(*configuration, "net..port"));
    EXPECT_FALSE(has(*configuration, "port"));
}

TEST(SourceRegistry, ServesAllKeysWithoutAGroup) {
    const auto configuration = withGroup("");
    EXPECT_TRUE(has(*configuration, "port"));
    EXPECT_FALSE(has(*configuration, ".port"));
}

TEST(SourceRegistry, AppendsADotToAGroupWithoutOne) {
    const struct {
        int line;
        std::string group, normalised;
    } rows[] = {
        {__LINE__, "", ""},
        {__LINE__, "net", "net."},
        {__LINE__, "net.", "net."},
        {__LINE__, "a.b", "a.b."},
        {__LINE__, ".", "."},
        {__LINE__, "net..", "net.."},
        {__LINE__, ".net", ".net."},
        {__LINE__, " ", " ."},
        {__LINE__, std::string("n\0t", 3), std::string("n\0t.", 4)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const auto configuration = withGroup(row.group);
        EXPECT_EQ(row.normalised, configuration->explain("key")[1].group);
        EXPECT_TRUE(has(*configuration, row.normalised + "port"));
    }
}

TEST(SourceRegistry, ComparesGroupsByteByByte) {
    const auto configuration = withGroup("n\xc3\xa9t");
    EXPECT_TRUE(has(*configuration, "n\xc3\xa9t.port"));
    EXPECT_FALSE(has(*configuration, "N\xc3\xa9t.port"));
    EXPECT_FALSE(has(*configuration, "n\xc3\xa8t.port"));
}

TEST(SourceRegistry, DoesNotMatchAKeyWhoseFirstWordIsLonger) {
    const auto configuration = withGroup("net");
    EXPECT_FALSE(has(*configuration, "network.port"));
    EXPECT_FALSE(has(*configuration, "xnet.port"));
}

TEST(SourceRegistry, DoesNotMatchAKeyThatIsShorterThanTheGroup) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("grouped", "net", 5, false, {{"", 80}}).get();
    EXPECT_FALSE(has(*configuration, "net"));
    EXPECT_FALSE(has(*configuration, ""));
    EXPECT_TRUE(has(*configuration, "net.")); // the empty key of that source
}

TEST(SourceRegistry, RefusesANameThatIsTaken) {
    const auto configuration = makeConfiguration();
    add(*configuration, "mine", 3);
    for (const std::string name : {"default", "override", "mine"}) {
        auto added = configuration->addInMemorySource(name, "", -1, true, {{"key", 1}});
        expectThrows<std::invalid_argument>(
            "Source with the requested name already exists: " + name, [&] { added.get(); });
    }
}

TEST(SourceRegistry, DoesNotChangeWhenANameIsTaken) {
    const auto configuration = makeConfiguration();
    std::ignore = configuration->addInMemorySource("default", "net", -1, true, {{"key", 1}});
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override", "default"));
    EXPECT_THAT(configuration->keys().get(), IsEmpty());
    EXPECT_EQ(2147483647, configuration->explain("key")[1].order);
    EXPECT_EQ("", configuration->explain("key")[1].group);
    EXPECT_FALSE(configuration->explain("key")[1].readOnly);
}

TEST(SourceRegistry, ComparesNamesByteByByte) {
    const auto configuration = makeConfiguration();
    const std::string withNul("default\0", 8);
    for (const std::string& name :
         {std::string("Default"), std::string("default "), std::string(), withNul})
        EXPECT_TRUE(configuration->addInMemorySource(name, "", 1, false, {}).get());
    EXPECT_TRUE(configuration->removeSource(withNul).get());
    EXPECT_THAT(sourcesOf(*configuration),
                ElementsAre("override", "", "default ", "Default", "default"));
}

TEST(SourceRegistry, AllowsANameAgainAfterRemoval) {
    const auto configuration = makeConfiguration();
    configuration->removeSource("override").get();
    EXPECT_TRUE(configuration->addInMemorySource("override", "", 7, true, {{"key", 1}}).get());
    EXPECT_EQ("override", supplierOf(*configuration, "key"));
}

TEST(SourceRegistry, ReturnsWhetherASourceWasRemoved) {
    const auto configuration = makeConfiguration();
    EXPECT_FALSE(configuration->removeSource("unknown").get());
    EXPECT_TRUE(configuration->removeSource("override").get());
    EXPECT_FALSE(configuration->removeSource("override").get());
    EXPECT_TRUE(configuration->removeSource("default").get());
    EXPECT_THAT(sourcesOf(*configuration), IsEmpty());
}

TEST(SourceRegistry, ForgetsTheOptionsOfARemovedSource) {
    const auto configuration = makeConfiguration();
    add(*configuration, "a", 5);
    configuration->removeSource("a").get();
    EXPECT_FALSE(has(*configuration, "key"));
    EXPECT_THAT(configuration->keys().get(), IsEmpty());
}

TEST(SourceRegistry, OwnsASourceUntilItIsRemoved) {
    const auto configuration = makeConfiguration();
    const auto source =
        std::make_shared<InMemorySource>(std::unordered_map<std::string, OptionValue>{{"key", 1}});
    EXPECT_TRUE(configuration->addSource("mine", "", 5, false, source).get());
    EXPECT_EQ(2, source.use_count());
    configuration->removeSource("mine").get();
    EXPECT_EQ(1, source.use_count());
    EXPECT_EQ(1, boost::get<int>(source->get("key")));
}

TEST(SourceRegistry, RegistersOneSourceUnderTwoNames) {
    const auto configuration = makeConfiguration();
    const auto source =
        std::make_shared<InMemorySource>(std::unordered_map<std::string, OptionValue>{{"key", 1}});
    EXPECT_TRUE(configuration->addSource("first", "", 5, false, source).get());
    EXPECT_TRUE(configuration->addSource("second", "net", 5, false, source).get());
    EXPECT_THAT(configuration->keys().get(), ElementsAre("key", "net.key"));
}

} // namespace
