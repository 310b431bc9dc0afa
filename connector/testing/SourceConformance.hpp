/// Tests that a source follows the rules of ConfigurationSource.
///
///     connector::testing::SourceFactory mySource();
///     CONNECTOR_SOURCE_CONFORMANCE(MySource, mySource())
///
/// defines a GoogleTest suite with a test for each rule, named RuleNN and a word. SourceRules.hpp
/// lists the rules, and docs/writing-a-source.md shows a source that keeps them. A rule that does
/// not apply to the sources of the factory is skipped. Run the suite under the thread sanitizer,
/// too.
#pragma once

#include <connector/testing/SourceRules.hpp>

#include <gtest/gtest.h>

#define CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Name, rule)                                     \
    TEST(Suite, Name) {                                                                            \
        const ::connector::testing::Verdict verdict = ::connector::testing::rule(factory);         \
        if (!verdict.applies)                                                                      \
            GTEST_SKIP() << "the source never changes";                                            \
        EXPECT_TRUE(verdict.broken.empty()) << verdict.broken;                                     \
    }

/// @param Suite    the name of the suite
/// @param factory  an expression of type SourceFactory, evaluated for each test
#define CONNECTOR_SOURCE_CONFORMANCE(Suite, factory)                                               \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule01Agreement, hasAndGetAgree)                    \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule02Keys, keysAreWhatHasAffirms)                  \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule03MissingKey, getOfAMissingKeyThrows)           \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule04Questions, questionsChangeNothing)            \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule05Set, setStoresAndTellsOrRefuses)              \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule06Changes, changesAreTold)                      \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule07NoLock, theWatcherRunsWithoutLocks)           \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule08Replacement, setWatcherReplaces)              \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule09Silence, anEmptyWatcherSilences)              \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule10Lifetime, watchersAreDestroyed)               \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule11Reentrancy, aWatcherMayReplaceItself)         \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule12Exceptions, exceptionsOfTheWatcherPass)       \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule13Threads, concurrentLookupsTearNothing)        \
    CONNECTOR_SOURCE_RULE_TEST(Suite, factory, Rule14Outliving, theSourceOutlivesItsConfiguration) \
    static_assert(true, "a semicolon may follow")
