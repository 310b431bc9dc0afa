/// Tests that a publisher follows the rules of Reactive Streams 1.0.4.
///
///     connector::testing::PublisherFactory<int> myPublishers();
///     CONNECTOR_PUBLISHER_CONFORMANCE(MyPublisher, myPublishers())
///
/// defines a GoogleTest suite with a test for each rule of PublisherRules.hpp, named by its number.
/// A rule is skipped if the factory lists it in `otherwise`, or if it does not apply to the
/// publishers of the factory.
#pragma once

#include <connector/testing/PublisherRules.hpp>

#include <gtest/gtest.h>

#define CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, number, Name, rule)                          \
    TEST(Suite, Name) {                                                                            \
        const auto made = factory;                                                                 \
        if (made.otherwise.count(number) != 0)                                                     \
            GTEST_SKIP() << "the publisher does not follow this rule on purpose";                  \
        const ::connector::testing::Verdict verdict = ::connector::testing::rule(made);            \
        if (!verdict.applies)                                                                      \
            GTEST_SKIP() << "the publisher never does what this rule is about";                    \
        EXPECT_TRUE(verdict.broken.empty()) << verdict.broken;                                     \
    }

/// @param Suite    the name of the suite
/// @param factory  an expression of type PublisherFactory<T>, evaluated for each test
#define CONNECTOR_PUBLISHER_CONFORMANCE(Suite, factory)                                            \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "1.1", Rule101Demand, noMoreThanRequested)       \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "1.3", Rule103Serial, signalsComeOneByOne)       \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "1.4", Rule104Failure, aFailureIsTold)           \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "1.5", Rule105End, anEndIsTold)                  \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "1.7", Rule107AfterEnd, nothingFollowsTheEnd)    \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "1.8", Rule108Cancelled,                         \
                                  aCancelledStreamIsSilent)                                        \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "1.9", Rule109OnSubscribe,                       \
                                  onSubscribeComesFirst)                                           \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "1.10", Rule110Another,                          \
                                  anotherSubscriberIsServedOrTold)                                 \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "3.2", Rule302FromSignals,                       \
                                  requestsFromSignalsAreServed)                                    \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "3.3", Rule303Recursion, recursionIsBounded)     \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "3.6", Rule306AfterCancel,                       \
                                  afterCancelNothingHappens)                                       \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "3.8", Rule308Sum, demandsAddUp)                 \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "3.9", Rule309Nothing, aRequestForNothingFails)  \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "3.13", Rule313Release,                          \
                                  cancelReleasesTheSubscriber)                                     \
    CONNECTOR_PUBLISHER_RULE_TEST(Suite, factory, "3.17", Rule317Unlimited, anyDemandIsPossible)   \
    static_assert(true, "a semicolon may follow")
