/// The exact diagnostic lines of every operation, in order.
#include "configuration/Answers.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "configuration/ScriptedSource.hpp"
#include "support/LogCapture.hpp"

#include <foundation/log/basic_diagnostic_logger.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <typeinfo>

namespace {

using foundation::log::set_diagnostic_mask;
using test::CoreLog;
using test::makeConfiguration;
using test::watch;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string logger = "connector::configuration";
const std::string inMemory = "N9connector13configuration14InMemorySourceE";

/// The log starts after the configuration is constructed.
class CoreDiagnostics : public testing::Test {
protected:
    const std::shared_ptr<connector::configuration::ConfigurationImpl> configuration =
        makeConfiguration();
    CoreLog log;
};

TEST_F(CoreDiagnostics, ConstructionLogsTheBuiltInSources) {
    makeConfiguration();
    EXPECT_THAT(log.lines(), ElementsAre("addSource: default, , 2147483647, 0, " + inMemory,
                                         "addSource: override, , 0, 0, " + inMemory));
}

TEST_F(CoreDiagnostics, EveryLineHasAChannelAndASeverity) {
    configuration->set("x", 1).get();
    ASSERT_EQ(4u, log.records().size());
    for (const test::LogRecord& record : log.records()) {
        EXPECT_EQ("connector::configuration", record.channel);
        EXPECT_EQ(8u, record.severity);
    }
}

TEST_F(CoreDiagnostics, AddSourceLogsTheGroupAsPassed) {
    configuration->addInMemorySource("a", "net", -5, true, {}).get();
    configuration->addInMemorySource("b", "net.", 5, false, {}).get();
    EXPECT_THAT(log.lines(), ElementsAre("addSource: a, net, -5, 1, " + inMemory,
                                         "addSource: b, net., 5, 0, " + inMemory));
}

TEST_F(CoreDiagnostics, AddSourceLogsItsKeysInOrder) {
    watch(*configuration, "net.port");
    log.clear();
    configuration->addInMemorySource("a", "net", 5, false, {{"port", 80}, {"host", 1}}).get();
    EXPECT_THAT(log.lines(),
                ElementsAre("addSource: a, net, 5, 0, " + inMemory, "updatePublishers: net.host",
                            "get: net.host from a", "updatePublishers: net.port",
                            "get: net.port from a", "notifying watcher: net.port"));
}

TEST_F(CoreDiagnostics, AddSourceLogsTheSupplierOfEachKey) {
    configuration->set("x", 1).get();
    log.clear();
    configuration->addInMemorySource("a", "", 5, false, {{"x", 2}}).get();
    EXPECT_THAT(log.lines(), ElementsAre("addSource: a, , 5, 0, " + inMemory, "updatePublishers: x",
                                         "get: x from override"));
}

TEST_F(CoreDiagnostics, AddSourceLogsTheDynamicType) {
    test::Journal journal;
    const auto source = std::make_shared<test::ScriptedSource>(journal, "a");
    configuration->addSource("a", "", 5, false, source).get();
    EXPECT_THAT(log.lines(), ElementsAre("addSource: a, , 5, 0, N4test14ScriptedSourceE"));
    configuration->removeSource("a").get();
}

TEST_F(CoreDiagnostics, AddPropertyFileSourceLogsItsType) {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("core-diagnostics-test-" + std::to_string(::getpid()) + ".properties");
    std::ofstream(path) << "port = 80\n";
    configuration->addPropertyFileSource("file", "", 5, true, path.u16string()).get();
    std::filesystem::remove(path);
    EXPECT_THAT(log.lines(), ElementsAre("addSource: file, , 5, 1, "
                                         "N9connector13configuration18PropertyFileSourceE",
                                         "updatePublishers: port", "get: port from file"));
}

TEST_F(CoreDiagnostics, AFileThatCannotBeOpenedLogsNothing) {
    EXPECT_ANY_THROW(
        std::ignore = configuration->addPropertyFileSource("file", "", 5, true, u"/no/such/file"));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CoreDiagnostics, ANameThatIsTakenLogsOnlyTheFirstLine) {
    std::ignore = configuration->addInMemorySource("default", "", 5, false, {{"x", 1}});
    EXPECT_THAT(log.lines(), ElementsAre("addSource: default, , 5, 0, " + inMemory));
}

TEST_F(CoreDiagnostics, AddSourceLogsTheSmallestOrderInDecimal) {
    configuration->addInMemorySource("a", "", std::numeric_limits<std::int32_t>::min(), false, {})
        .get();
    EXPECT_THAT(log.lines(), ElementsAre("addSource: a, , -2147483648, 0, " + inMemory));
}

TEST_F(CoreDiagnostics, RemoveSourceLogsLocalKeysWithoutTheGroup) {
    configuration->addInMemorySource("a", "net", 5, false, {{"port", 80}, {"host", 1}}).get();
    configuration->set("port", 1).get();
    watch(*configuration, "port");
    log.clear();
    configuration->removeSource("a").get();
    EXPECT_THAT(log.lines(),
                ElementsAre("removeSource: a", "updatePublishers: host", "updatePublishers: port",
                            "get: port from override", "notifying watcher: port"));
}

TEST_F(CoreDiagnostics, RemovalOfAnUnknownSourceLogsOneLine) {
    configuration->removeSource("unknown").get();
    EXPECT_THAT(log.lines(), ElementsAre("removeSource: unknown"));
}

TEST_F(CoreDiagnostics, GetLogsTheSupplier) {
    configuration->addInMemorySource("a", "net", 5, false, {{"port", 80}}).get();
    log.clear();
    configuration->get("net.port").get();
    EXPECT_THAT(log.lines(), ElementsAre("get: net.port from a"));
}

TEST_F(CoreDiagnostics, GetOptionLogsTheSupplier) {
    configuration->addInMemorySource("a", "net", 5, false, {{"port", 80}}).get();
    log.clear();
    configuration->getOption("net.port").get();
    EXPECT_THAT(log.lines(), ElementsAre("get option: net.port from a"));
}

TEST_F(CoreDiagnostics, LookupOfAMissingKeyLogsNothing) {
    std::ignore = configuration->get("x");
    std::ignore = configuration->getOption("x");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CoreDiagnostics, SetLogsTheTargetAndThenTheNotifications) {
    watch(*configuration, "x");
    watch(*configuration, "x");
    watch(*configuration, "y");
    log.clear();
    configuration->set("x", 1).get();
    EXPECT_THAT(log.lines(), ElementsAre("set: x", "set: x@override", "updatePublishers: x",
                                         "get: x from override", "notifying watcher: x",
                                         "notifying watcher: x"));
}

TEST_F(CoreDiagnostics, SetInANamedSourceLogsItsNameTwice) {
    configuration->set("x", 1, "default").get();
    EXPECT_THAT(log.lines(), ElementsAre("set: x, default", "set: x@default", "updatePublishers: x",
                                         "get: x from default"));
}

TEST_F(CoreDiagnostics, SetLogsTheKeyWithTheGroup) {
    configuration->addInMemorySource("a", "net", -1, false, {}).get();
    log.clear();
    configuration->set("net.port", 80).get();
    EXPECT_THAT(log.lines(), ElementsAre("set: net.port", "set: net.port@a",
                                         "updatePublishers: net.port", "get: net.port from a"));
}

TEST_F(CoreDiagnostics, AFailedSetLogsOnlyTheFirstLine) {
    std::ignore = configuration->set("x", 1, "unknown");
    std::ignore = configuration->removeSource("override");
    std::ignore = configuration->removeSource("default");
    log.clear();
    std::ignore = configuration->set("x", 1, "unknown");
    std::ignore = configuration->set("x", 1);
    EXPECT_THAT(log.lines(), ElementsAre("set: x, unknown", "set: x"));
}

TEST_F(CoreDiagnostics, WatchOptionLogsTheLookupOfTheCurrentValue) {
    configuration->set("x", 1, "default").get();
    log.clear();
    configuration->watchOption("x");
    configuration->watchOption("y");
    EXPECT_THAT(log.lines(),
                ElementsAre("watchOption: x", "get: x from default", "watchOption: y"));
}

TEST_F(CoreDiagnostics, WatchOptionOnTheStackLogsBeforeItThrows) {
    connector::configuration::ConfigurationImpl onTheStack;
    log.clear();
    EXPECT_THROW(onTheStack.watchOption("x"), std::bad_weak_ptr);
    EXPECT_THAT(log.lines(), ElementsAre("watchOption: x"));
}

TEST_F(CoreDiagnostics, ANotificationIsLoggedBeforeTheSubscriberIsCalled) {
    watch(*configuration, "x", [&](int) {
        EXPECT_EQ("notifying watcher: x", log.lines().back());
        EXPECT_EQ(5u, log.lines().size());
        log.clear();
    });
    log.clear();
    configuration->set("x", 1).get();
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CoreDiagnostics, AStreamWithoutDemandOrSubscriberIsLoggedToo) {
    watch(*configuration, "x", nullptr, 0);
    configuration->watchOption("x");
    configuration->set("x", 1).get();
    EXPECT_THAT(log.lines(), testing::Contains("notifying watcher: x").Times(2));
}

TEST_F(CoreDiagnostics, TheOtherOperationsLogNothing) {
    configuration->addEnvironmentSource("environment", "", 5).get();
    configuration->has("x").get();
    configuration->keys().get();
    configuration->getPtr();
    configuration->explain("x");
    configuration->removeStream(0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CoreDiagnostics, CancellationAndDestructionLogNothing) {
    auto shortLived = makeConfiguration();
    const auto subscriber = watch(*shortLived, "x");
    log.clear();
    subscriber->cancel();
    shortLived.reset();
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CoreDiagnostics, NothingIsLoggedWhileTheBitIsOff) {
    for (const unsigned mask : {0u, 1u, 7u, 16u, ~8u}) {
        ASSERT_TRUE(set_diagnostic_mask(logger, mask));
        configuration->set("x", 1).get();
        configuration->get("x").get();
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(CoreDiagnostics, OtherBitsMakeNoDifference) {
    for (const unsigned mask : {8u, 9u, 24u, ~0u}) {
        ASSERT_TRUE(set_diagnostic_mask(logger, mask));
        configuration->removeSource("unknown").get();
    }
    EXPECT_EQ(4u, log.lines().size());
}

} // namespace
