/// When diagnostic lines are written: before or under the mutex, before or after the change itself.
/// A sink that throws shows the latter, because nothing after the line happens.
#include "configuration/Answers.hpp"
#include "configuration/MutexHolder.hpp"
#include "configuration/MutexProbe.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "support/Expect.hpp"
#include "support/LogCapture.hpp"
#include "support/ObservedThread.hpp"

#include <foundation/log/basic_diagnostic_logger.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace {

using connector::configuration::ConfigurationImpl;
using foundation::log::set_diagnostic_mask;
using test::expectThrows;
using test::has;
using test::intOf;
using test::LogCapture;
using test::LogRecord;
using test::makeConfiguration;
using test::MutexHolder;
using test::MutexProbe;
using test::ObservedThread;
using test::sourcesOf;
using testing::ElementsAre;

const std::string logger = "connector::configuration";

struct Operation {
    int line;
    std::string text; // the diagnostic line
    std::function<void(ConfigurationImpl&)> run;
};

const Operation writtenBeforeTheMutex[] = {
    {__LINE__, "set: x", [](auto& configuration) { configuration.set("x", 1).get(); }},
    {__LINE__, "set: x, default",
     [](auto& configuration) { configuration.set("x", 1, "default").get(); }},
    {__LINE__, "addSource: a, , 5, 0, N9connector13configuration14InMemorySourceE",
     [](auto& configuration) { configuration.addInMemorySource("a", "", 5, false, {}).get(); }},
    {__LINE__, "removeSource: a",
     [](auto& configuration) { configuration.removeSource("a").get(); }},
    {__LINE__, "watchOption: x", [](auto& configuration) { configuration.watchOption("x"); }},
};

const Operation writtenUnderTheMutex[] = {
    {__LINE__, "get: y from default", [](auto& configuration) { configuration.get("y").get(); }},
    {__LINE__, "get option: y from default",
     [](auto& configuration) { configuration.getOption("y").get(); }},
    {__LINE__, "set: x@override", [](auto& configuration) { configuration.set("x", 1).get(); }},
    {__LINE__, "set: x@default",
     [](auto& configuration) { configuration.set("x", 1, "default").get(); }},
    {__LINE__, "updatePublishers: z",
     [](auto& configuration) {
         configuration.addInMemorySource("a", "", 5, false, {{"z", 1}}).get();
     }},
};

std::shared_ptr<ConfigurationImpl> withY() {
    auto configuration = makeConfiguration();
    configuration->set("y", 2, "default").get();
    return configuration;
}

TEST(DiagnosticsOrder, TheFirstLineOfAnOperationIsWrittenBeforeTheMutexIsTaken) {
    for (const Operation& operation : writtenBeforeTheMutex) {
        SCOPED_TRACE(operation.line);
        const auto configuration = withY();
        MutexHolder holder(*configuration);
        const test::CoreLog log;
        ObservedThread thread([&] { operation.run(*configuration); });
        EXPECT_TRUE(thread.blocksOn(*configuration));
        EXPECT_THAT(log.lines(), ElementsAre(operation.text));
        holder.release();
        thread.join();
    }
}

TEST(DiagnosticsOrder, TheLaterLinesAreWrittenUnderTheMutex) {
    for (const Operation& operation : writtenUnderTheMutex) {
        SCOPED_TRACE(operation.line);
        const auto configuration = withY();
        MutexProbe probe(*configuration);
        bool held = false;
        const LogCapture log([&](const LogRecord& record) {
            if (record.message == operation.text)
                held = probe.isHeld();
        });
        set_diagnostic_mask(logger, 8);
        operation.run(*configuration);
        EXPECT_TRUE(held);
    }
}

/// Runs an operation with a sink that throws at one line. Expects it to throw the same.
void runWithFailingSink(const std::string& failingLine, const std::function<void()>& operation) {
    const LogCapture log([&](const LogRecord& record) {
        if (record.message == failingLine)
            throw std::runtime_error("the sink failed");
    });
    set_diagnostic_mask(logger, 8);
    expectThrows<std::runtime_error>("the sink failed", operation);
}

TEST(FailingSink, PreventsASet) {
    const auto configuration = makeConfiguration();
    for (const std::string line : {"set: x", "set: x@override"}) {
        runWithFailingSink(line, [&] { configuration->set("x", 1).get(); });
        EXPECT_FALSE(has(*configuration, "x"));
        EXPECT_TRUE(test::mutexIsFree(*configuration));
    }
}

TEST(FailingSink, PreventsASetInANamedSource) {
    const auto configuration = makeConfiguration();
    for (const std::string line : {"set: x, default", "set: x@default"}) {
        runWithFailingSink(line, [&] { configuration->set("x", 1, "default").get(); });
        EXPECT_FALSE(has(*configuration, "x"));
        EXPECT_TRUE(test::mutexIsFree(*configuration));
    }
}

TEST(FailingSink, DuringTheNotificationLeavesTheValueWritten) {
    const auto configuration = makeConfiguration();
    const auto subscriber = test::watch(*configuration, "x");
    runWithFailingSink("updatePublishers: x", [&] { configuration->set("x", 1).get(); });
    EXPECT_EQ(1, intOf(*configuration, "x"));
    EXPECT_THAT(subscriber->values(), ElementsAre());
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST(FailingSink, PreventsALookup) {
    const auto configuration = withY();
    runWithFailingSink("get: y from default", [&] { configuration->get("y").get(); });
    runWithFailingSink("get option: y from default", [&] { configuration->getOption("y").get(); });
    EXPECT_TRUE(test::mutexIsFree(*configuration));
    EXPECT_EQ(2, intOf(*configuration, "y"));
}

TEST(FailingSink, PreventsTheAdditionOfASource) {
    const auto configuration = makeConfiguration();
    runWithFailingSink("addSource: a, , 5, 0, N9connector13configuration14InMemorySourceE",
                       [&] { configuration->addInMemorySource("a", "", 5, false, {}).get(); });
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override", "default"));
}

TEST(FailingSink, DuringTheAdditionOfASourceLeavesItRegistered) {
    const auto configuration = makeConfiguration();
    runWithFailingSink("updatePublishers: x", [&] {
        configuration->addInMemorySource("a", "", 5, false, {{"x", 1}}).get();
    });
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override", "a", "default"));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST(FailingSink, PreventsTheRemovalOfASource) {
    const auto configuration = makeConfiguration();
    runWithFailingSink("removeSource: default",
                       [&] { configuration->removeSource("default").get(); });
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override", "default"));
}

TEST(FailingSink, DuringTheRemovalOfASourceLeavesItRemoved) {
    const auto configuration = withY();
    runWithFailingSink("updatePublishers: y",
                       [&] { configuration->removeSource("default").get(); });
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override"));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST(FailingSink, PreventsWatchOptionFromConsumingAnId) {
    const auto configuration = makeConfiguration();
    runWithFailingSink("watchOption: x", [&] { configuration->watchOption("x"); });
    const auto subscriber = test::watch(*configuration, "x");
    configuration->removeStream(0);
    EXPECT_EQ(1, subscriber->completions());
}

TEST(FailingSink, DuringWatchOptionLeavesTheStreamRegistered) {
    const auto configuration = withY();
    runWithFailingSink("get: y from default", [&] { configuration->watchOption("y"); });
    EXPECT_TRUE(test::mutexIsFree(*configuration));
    test::CoreLog log;
    configuration->set("y", 3, "default").get();
    EXPECT_THAT(log.lines(), ElementsAre("set: y, default", "set: y@default", "updatePublishers: y",
                                         "get: y from default", "notifying watcher: y"));
}

} // namespace
