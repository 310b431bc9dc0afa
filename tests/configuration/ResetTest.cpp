/// Taking options back.
#include "RecordingSubscriber.hpp"
#include "ScriptedSource.hpp"
#include "support/Expect.hpp"
#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/OptionWatch.hpp>

namespace {

using namespace connector::configuration;
using ::testing::ElementsAre;

struct Plain {
    int number;
};

} // namespace

template <>
struct connector::configuration::OptionConverter<Plain> {
    static Plain convert(const OptionValue& value) { return {boost::get<int>(value)}; }
    static std::string typeName() { return "plain"; }
};

namespace {

class Reset : public ::testing::Test {
protected:
    test::Journal journal; // outlives the sources
    std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    std::vector<int> told;
    OptionWatch watch = onChange<Plain>(
        configuration, "key", [this](const Plain& value) { told.push_back(value.number); });
};

TEST_F(Reset, TakesBackWhatSetWroteAndTellsTheValueThatShowsNow) {
    configuration->set("key", 1, "default").get();
    configuration->set("key", 2).get();
    EXPECT_TRUE(configuration->reset("key").get());
    EXPECT_TRUE(OptionValue(1) == configuration->get("key").get());
    EXPECT_THAT(told, ElementsAre(1, 2, 1));
}

TEST_F(Reset, TellsNobodyWhenThereWasNoEntryOrNothingShows) {
    configuration->set("key", 1).get();
    EXPECT_FALSE(configuration->reset("other").get());
    EXPECT_FALSE(configuration->reset("key", "default").get());
    EXPECT_TRUE(configuration->reset("key").get());
    EXPECT_FALSE(configuration->reset("key").get());
    EXPECT_FALSE(configuration->has("key").get());
    EXPECT_THAT(told, ElementsAre(1));
}

TEST_F(Reset, WorksOnTheNamedSourceAndWithItsGroup) {
    configuration->addInMemorySource("net", "net", 10, false, {{"port", 1}}).get();
    EXPECT_TRUE(configuration->reset("net.port", "net").get());
    EXPECT_FALSE(configuration->has("net.port").get());
}

TEST_F(Reset, FailsWhereSetWouldHaveNoSource) {
    configuration->removeSource("override").get();
    configuration->removeSource("default").get();
    test::expectThrows<std::runtime_error>("No writable configuration source for key: key",
                                           [this] { configuration->reset("key").get(); });
    configuration->addInMemorySource("fixed", "", 0, true, {{"key", 1}}).get();
    configuration->addInMemorySource("net", "net", 0, false, {}).get();
    for (const std::string source : {"fixed", "net", "nowhere"})
        test::expectThrows<std::runtime_error>("Source not found or not writable: key, " + source,
                                               [&] { configuration->reset("key", source).get(); });
    EXPECT_TRUE(configuration->has("key").get());
}

TEST_F(Reset, FailsForSourcesThatAreNotInMemory) {
    const test::TemporaryDirectory directory;
    const auto file = directory.write("a.properties", "key=1\n");
    configuration->addPropertyFileSource("file", "", -1, false, file.u16string()).get();
    test::expectThrows<std::runtime_error>("No writable configuration source for key: key",
                                           [this] { configuration->reset("key").get(); });
    configuration
        ->addSource("source", "", -2, false,
                    std::make_shared<test::ScriptedSource>(journal, "source"))
        .get();
    test::expectThrows<std::runtime_error>("No writable configuration source for key: key",
                                           [this] { configuration->reset("key").get(); });
    test::expectThrows<std::runtime_error>("Source not found or not writable: key, source",
                                           [this] { configuration->reset("key", "source").get(); });
}

} // namespace
