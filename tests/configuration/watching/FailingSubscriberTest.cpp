/// Subscribers that throw: what is reported, and what is not affected.
#include "configuration/Answers.hpp"
#include "configuration/MutexProbe.hpp"
#include "configuration/RecordingSubscriber.hpp"
#include "support/LogCapture.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <foundation/log/basic_diagnostic_logger.hpp>

#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using test::makeConfiguration;
using test::RecordingSubscriber;
using test::watch;
using testing::ElementsAre;

/// Replaces the buffer of std::cerr, and counts how often it is flushed.
class CapturedErrors : private std::stringbuf {
public:
    CapturedErrors() : before(std::cerr.rdbuf(this)) { std::cerr << std::nounitbuf; }
    ~CapturedErrors() override {
        std::cerr << std::unitbuf;
        std::cerr.rdbuf(before);
    }

    std::string text() const { return str(); }
    int flushes() const { return flushCount; }

private:
    int sync() override {
        ++flushCount;
        return 0;
    }

    std::streambuf* const before;
    int flushCount = 0;
};

void throwException(int) {
    throw std::runtime_error("a secret of the subscriber");
}
void throwNumber(int) {
    throw 42;
}

const std::string lineForX = "Error in configuration value subscriber: x\n";

TEST(FailingSubscriber, IsReportedWithTheKeyInOneLine) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    watch(*configuration, "x", throwException);
    configuration->set("x", 1).get();
    EXPECT_EQ(lineForX, errors.text());
}

TEST(FailingSubscriber, IsReportedWithAFlush) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    watch(*configuration, "x", throwException);
    configuration->set("x", 1).get();
    EXPECT_GE(errors.flushes(), 1);
}

TEST(FailingSubscriber, IsReportedOnTheStandardErrorOfTheProcess) {
    std::FILE* const file = std::tmpfile();
    ASSERT_NE(nullptr, file);
    const int before = ::dup(STDERR_FILENO);
    ::dup2(::fileno(file), STDERR_FILENO);
    {
        const auto configuration = makeConfiguration();
        watch(*configuration, "net.port", throwException);
        configuration->set("net.port", 1).get();
    }
    ::dup2(before, STDERR_FILENO);
    ::close(before);

    char text[200] = {};
    std::rewind(file);
    const std::size_t size = std::fread(text, 1, sizeof(text) - 1, file);
    std::fclose(file);
    EXPECT_EQ("Error in configuration value subscriber: net.port\n", std::string(text, size));
}

TEST(FailingSubscriber, IsReportedWithTheWholeKey) {
    const CapturedErrors errors;
    const std::string key("net.\xff\0 x", 8);
    const auto configuration = makeConfiguration();
    watch(*configuration, key, throwException);
    configuration->set(key, 1).get();
    EXPECT_EQ("Error in configuration value subscriber: " + key + "\n", errors.text());
}

TEST(FailingSubscriber, MayThrowAnything) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    watch(*configuration, "x", throwNumber);
    EXPECT_NO_THROW(configuration->set("x", 1).get());
    EXPECT_EQ(lineForX, errors.text());
}

TEST(FailingSubscriber, IsReportedOncePerStream) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    watch(*configuration, "x", throwException);
    watch(*configuration, "x");
    watch(*configuration, "x", throwNumber);
    configuration->set("x", 1).get();
    EXPECT_EQ(lineForX + lineForX, errors.text());
}

TEST(FailingSubscriber, DoesNotAffectOtherSubscribers) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    const auto before = watch(*configuration, "x");
    watch(*configuration, "x", throwException);
    const auto after = watch(*configuration, "x");
    configuration->set("x", 1).get();
    EXPECT_THAT(before->values(), ElementsAre(1));
    EXPECT_THAT(after->values(), ElementsAre(1));
}

TEST(FailingSubscriber, DoesNotAffectTheCallerOfSet) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    watch(*configuration, "x", throwException);
    EXPECT_EQ(1, test::intIn(configuration->set("x", 1)));
    EXPECT_EQ(1, test::intOf(*configuration, "x"));
    EXPECT_TRUE(test::mutexIsFree(*configuration));
}

TEST(FailingSubscriber, ReceivesTheNextChange) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    const auto subscriber = watch(*configuration, "x", throwException);
    configuration->set("x", 1).get();
    configuration->set("x", 2).get();
    EXPECT_THAT(subscriber->values(), ElementsAre(1, 2));
    EXPECT_EQ(lineForX + lineForX, errors.text());
}

TEST(FailingSubscriber, DoesNotStopTheAdditionOfASource) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    watch(*configuration, "x", throwException);
    const auto other = watch(*configuration, "y");
    EXPECT_TRUE(configuration->addInMemorySource("a", "", 5, false, {{"x", 1}, {"y", 2}}).get());
    EXPECT_THAT(other->values(), ElementsAre(2));
    EXPECT_EQ(lineForX, errors.text());
}

TEST(FailingSubscriber, DoesNotStopTheRemovalOfASource) {
    const auto configuration = makeConfiguration();
    configuration->addInMemorySource("a", "", -1, false, {{"x", 1}}).get();
    configuration->set("x", 2, "default").get();
    const auto subscriber = watch(*configuration, "x");
    subscriber->inOnNext = throwException;
    const CapturedErrors errors;
    EXPECT_TRUE(configuration->removeSource("a").get());
    EXPECT_EQ(lineForX, errors.text());
}

TEST(FailingSubscriber, IsNotReportedWhenItsOwnRequestThrows) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    configuration->set("x", 1).get();
    const auto subscriber = watch(*configuration, "x", throwException, 0);
    EXPECT_THROW(subscriber->request(1), std::runtime_error);
    EXPECT_EQ("", errors.text());
}

TEST(FailingSubscriber, IsTheOnlyCauseOfAReport) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    watch(*configuration, "x");
    configuration->set("x", 1).get();
    configuration->set("y", 1).get();
    EXPECT_EQ("", errors.text());
}

TEST(FailingSink, DuringANotificationIsReportedLikeASubscriber) {
    const CapturedErrors errors;
    const auto configuration = makeConfiguration();
    const auto first = watch(*configuration, "x");
    const auto second = watch(*configuration, "x");
    bool failed = false;
    {
        const test::LogCapture log([&](const test::LogRecord& record) {
            if (record.message == "notifying watcher: x" && !std::exchange(failed, true))
                throw std::runtime_error("the sink failed");
        });
        foundation::log::set_diagnostic_mask("connector::configuration", 8);
        configuration->set("x", 1).get();
    }
    EXPECT_THAT(first->values(), ElementsAre()); // the sink threw before the value was delivered
    EXPECT_THAT(second->values(), ElementsAre(1));
    EXPECT_EQ(lineForX, errors.text());
}

} // namespace
