/// What diagnostics cost while they are off. This program counts its allocations, those of the
/// libraries included; therefore it is a program of its own.
#include "configuration/Answers.hpp"
#include "support/AllocationCount.hpp"
#include "support/LogCapture.hpp"

#include <connector/async/Future.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>

namespace {

using connector::makeReadyFuture;
using connector::configuration::Option;
using connector::configuration::OptionValue;

std::size_t allocationsOf(const std::function<void()>& operation) {
    const std::size_t before = test::allocationCount();
    operation();
    return test::allocationCount() - before;
}

// Keys, names and values here are so short that strings and variants hold them in place. A line that
// was composed would be longer than that.

TEST(DiagnosticsCost, IsNothingForALookup) {
    const auto configuration = test::makeConfiguration();
    configuration->set("x", 1);
    EXPECT_EQ(allocationsOf([] { makeReadyFuture(OptionValue(1)); }),
              allocationsOf([&] { configuration->get("x"); }));
    EXPECT_EQ(allocationsOf([] {
                  makeReadyFuture(Option{"x", "override", 1});
              }),
              allocationsOf([&] { configuration->getOption("x"); }));
}

TEST(DiagnosticsCost, IsNothingForAnUpdate) {
    const auto configuration = test::makeConfiguration();
    configuration->set("x", 1);
    configuration->set("x", 1, "default");
    const std::string name = "default";
    const std::size_t expected = allocationsOf([] { makeReadyFuture(OptionValue(1)); });
    EXPECT_EQ(expected, allocationsOf([&] { configuration->set("x", 2); }));
    EXPECT_EQ(expected, allocationsOf([&] { configuration->set("x", 2, name); }));
}

TEST(DiagnosticsCost, IsNothingForARemovalThatFindsNothing) {
    const auto configuration = test::makeConfiguration();
    EXPECT_EQ(allocationsOf([] { makeReadyFuture(false); }),
              allocationsOf([&] { configuration->removeSource("nobody"); }));
}

TEST(DiagnosticsCost, IsNothingForANameThatIsTaken) {
    const auto configuration = test::makeConfiguration();
    const auto add = [&] { configuration->addInMemorySource("default", "", 5, false, {}); };
    const std::size_t off = allocationsOf(add);
    const test::CoreLog log;
    EXPECT_LT(off, allocationsOf(add)); // the line that is composed now
}

TEST(DiagnosticsCost, IsCountedByThisTest) {
    const auto configuration = test::makeConfiguration();
    configuration->set("x", 1);
    const auto get = [&] { configuration->get("x"); };
    const std::size_t off = allocationsOf(get);
    const test::CoreLog log;
    EXPECT_LT(off, allocationsOf(get));
}

} // namespace
