/// Diagnostics that are off allocate nothing. This is a program of its own because it counts every
/// allocation of the process, including those of the libraries.
#include "configuration/Answers.hpp"
#include "support/AllocationCount.hpp"
#include "support/LogCapture.hpp"

#include <connector/async/Future.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <tuple>

namespace {

using connector::makeReadyFuture;
using connector::configuration::Option;
using connector::configuration::OptionValue;

std::size_t allocationsOf(const std::function<void()>& operation) {
    const std::size_t before = test::allocationCount();
    operation();
    return test::allocationCount() - before;
}

// Keys, names and values are short enough for the small-string optimisation. A formatted diagnostic
// line would be longer and would allocate.

TEST(DiagnosticsCost, ALookupAllocatesOnlyItsFuture) {
    const auto configuration = test::makeConfiguration();
    configuration->set("x", 1).get();
    EXPECT_EQ(allocationsOf([] { makeReadyFuture(OptionValue(1)).get(); }),
              allocationsOf([&] { configuration->get("x").get(); }));
    EXPECT_EQ(allocationsOf([] {
                  makeReadyFuture(Option{"x", "override", 1}).get();
              }),
              allocationsOf([&] { configuration->getOption("x").get(); }));
}

TEST(DiagnosticsCost, AnUpdateAllocatesOnlyItsFuture) {
    const auto configuration = test::makeConfiguration();
    configuration->set("x", 1).get();
    configuration->set("x", 1, "default").get();
    const std::string name = "default";
    const std::size_t expected = allocationsOf([] { makeReadyFuture(OptionValue(1)).get(); });
    EXPECT_EQ(expected, allocationsOf([&] { configuration->set("x", 2).get(); }));
    EXPECT_EQ(expected, allocationsOf([&] { configuration->set("x", 2, name).get(); }));
}

TEST(DiagnosticsCost, RemovalOfAnUnknownSourceAllocatesOnlyItsFuture) {
    const auto configuration = test::makeConfiguration();
    EXPECT_EQ(allocationsOf([] { makeReadyFuture(false).get(); }),
              allocationsOf([&] { configuration->removeSource("unknown").get(); }));
}

TEST(DiagnosticsCost, AdditionOfATakenNameAllocatesMoreWithDiagnosticsOn) {
    const auto configuration = test::makeConfiguration();
    const auto add = [&] {
        std::ignore = configuration->addInMemorySource("default", "", 5, false, {});
    };
    const std::size_t off = allocationsOf(add);
    const test::CoreLog log;
    EXPECT_LT(off, allocationsOf(add)); // the formatted line
}

TEST(DiagnosticsCost, ALookupAllocatesMoreWithDiagnosticsOn) {
    const auto configuration = test::makeConfiguration();
    configuration->set("x", 1).get();
    const auto get = [&] { configuration->get("x").get(); };
    const std::size_t off = allocationsOf(get);
    const test::CoreLog log;
    EXPECT_LT(off, allocationsOf(get));
}

} // namespace
