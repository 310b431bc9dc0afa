/// Several options at one moment.
#include "ScriptedSource.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <atomic>
#include <thread>

namespace {

using namespace connector::configuration;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Options : public ::testing::Test {
protected:
    Options() {
        configuration->addInMemorySource("net", "net", 10, true, {{"port", 1}, {"host", 2}}).get();
        configuration
            ->addInMemorySource("plain", "", 20, true,
                                {{"net.port", 3}, {"net.a", 4}, {"network", 5}})
            .get();
    }

    static std::vector<std::string> texts(const std::vector<Option>& options) {
        std::vector<std::string> texts;
        for (const Option& option : options)
            texts.push_back(option.key + "=" + std::to_string(boost::get<int>(option.value)) + "@" +
                            option.source);
        return texts;
    }

    test::Journal journal; // outlives the sources
    std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
};

TEST_F(Options, BelowAPrefixAreSortedAndEffective) {
    EXPECT_THAT(texts(configuration->optionsBelow("net.")),
                ElementsAre("net.a=4@plain", "net.host=2@net", "net.port=1@net"));
    EXPECT_THAT(
        texts(configuration->optionsBelow("net")),
        ElementsAre("net.a=4@plain", "net.host=2@net", "net.port=1@net", "network=5@plain"));
    EXPECT_THAT(texts(configuration->optionsBelow("net.po")), ElementsAre("net.port=1@net"));
    EXPECT_EQ(4u, configuration->optionsBelow("").size());
    EXPECT_THAT(configuration->optionsBelow("x"), IsEmpty());
}

TEST_F(Options, OfKeysAreThoseThatAreThereInTheOrderOfTheList) {
    EXPECT_THAT(texts(configuration->optionsOf({"network", "missing", "net.port", "network"})),
                ElementsAre("network=5@plain", "net.port=1@net", "network=5@plain"));
    EXPECT_THAT(configuration->optionsOf({}), IsEmpty());
}

TEST_F(Options, SourcesOfTheApplicationsAreAsked) {
    const auto source = std::make_shared<test::ScriptedSource>(
        journal, "source", std::map<std::string, OptionValue>{{"x", 7}});
    configuration->addSource("source", "net", 0, true, source).get();
    journal.clear();
    EXPECT_THAT(texts(configuration->optionsOf({"net.x"})), ElementsAre("net.x=7@source"));
    EXPECT_THAT(journal, ElementsAre("source has x", "source has x", "source get x"));
    EXPECT_EQ(4u, configuration->optionsBelow("net.").size());
    source->onHas = [](const std::string&) { throw std::logic_error("source"); };
    EXPECT_THROW(configuration->optionsBelow("net."), std::logic_error);
    EXPECT_THROW(configuration->optionsOf({"net.x"}), std::logic_error);
}

TEST_F(Options, AreOfOneMoment) {
    std::atomic<bool> isOver{false};
    std::thread writer([&] {
        for (int i = 0; !isOver; ++i) {
            configuration->set("one", i).get();
            configuration->set("two", i).get();
        }
    });
    for (int i = 0; i < 1000; ++i) {
        const std::vector<Option> options = configuration->optionsOf({"one", "two"});
        const std::vector<Option> below = configuration->optionsBelow("");
        if (options.size() == 2) {
            const int difference =
                boost::get<int>(options[0].value) - boost::get<int>(options[1].value);
            EXPECT_TRUE(difference == 0 || difference == 1) << difference;
        }
    }
    isOver = true;
    writer.join();
}

} // namespace
