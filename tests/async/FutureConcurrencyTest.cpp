/// Futures and promises that several threads use. Also run with the thread sanitizer.
#include <connector/async/Promise.hpp>

#include "async/BlockedReader.hpp"
#include "async/Internals.hpp"
#include "async/Race.hpp"
#include "async/Texts.hpp"
#include "support/Expect.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <utility>

namespace connector {

using detail::FutureStatus;
using test::abandoned;
using test::alreadyTaken;
using test::BlockedReader;
using test::cancelled;
using test::invalidStatus;
using test::race;
using test::State;

namespace {

constexpr int rounds = 300;

/// @return whether the call succeeded; false if the state was resolved already
bool resolves(State& state, int value) {
    try {
        state.setValue(value);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

} // namespace

TEST(FutureConcurrency, AWaitingReaderGetsTheValue) {
    const auto state = std::make_shared<State>();
    BlockedReader reader(state);
    state->setValue(7);
    EXPECT_EQ("7", reader.outcome());
}

TEST(FutureConcurrency, AWaitingReaderGetsTheException) {
    const auto state = std::make_shared<State>();
    BlockedReader reader(state);
    state->setException(std::make_exception_ptr(std::runtime_error("no")));
    EXPECT_EQ("no", reader.outcome());
}

TEST(FutureConcurrency, AWaitingReaderThrowsOnCancellation) {
    const auto state = std::make_shared<State>();
    BlockedReader reader(state);
    EXPECT_TRUE(state->cancel());
    EXPECT_EQ(cancelled, reader.outcome());
}

TEST(FutureConcurrency, AWaitingReaderThrowsWhenTheStateIsAbandoned) {
    const auto state = std::make_shared<State>();
    BlockedReader reader(state);
    state->abandon();
    EXPECT_EQ(abandoned, reader.outcome());
}

TEST(FutureConcurrency, AbandoningWakesWaitingThreadsInEveryStatus) {
    for (const auto& [status, text] : {std::pair(FutureStatus::Cancelled, cancelled),
                                       std::pair(static_cast<FutureStatus>(4), invalidStatus)}) {
        const auto state = std::make_shared<State>();
        BlockedReader reader(state);
        test::setStatus(*state, status); // wakes no thread
        state->abandon();
        EXPECT_EQ(text, reader.outcome());
    }
}

TEST(FutureConcurrency, GetWaitsForThePromise) {
    Promise<int> promise;
    std::atomic<bool> started{false};
    auto read = std::async(std::launch::async, [&, future = promise.getFuture()]() mutable {
        started = true;
        return future.get();
    });
    while (!started)
        std::this_thread::yield();
    promise.setValue(7);
    EXPECT_EQ(7, test::within(std::move(read)));
}

TEST(FutureConcurrency, GetThrowsWhenThePromiseIsDestroyed) {
    std::optional<Promise<int>> promise(std::in_place);
    auto read = std::async(std::launch::async, [future = promise->getFuture()]() mutable {
        try {
            return std::to_string(future.get());
        } catch (const std::runtime_error& thrown) {
            return std::string(thrown.what());
        }
    });
    promise.reset();
    EXPECT_EQ(abandoned, test::within(std::move(read)));
}

TEST(FutureConcurrency, TheFutureMayBeDestroyedWhileGetWaits) {
    auto state = std::make_shared<State>();
    auto handle = std::make_unique<Future<int>>(state);
    auto read = std::async(std::launch::async, [&] { return handle->get(); });
    while (!test::isWaitedFor(*state))
        std::this_thread::yield();
    handle.reset(); // the running call keeps the state alive
    state->setValue(7);
    state.reset();
    EXPECT_EQ(7, test::within(std::move(read)));
}

TEST(FutureConcurrency, OneOfSeveralResolutionsSucceeds) {
    for (int round = 0; round < rounds; ++round) {
        const auto state = std::make_shared<State>();
        std::atomic<int> winners{0};
        std::atomic<int> winner{0};
        const auto attempt = [&](int value) {
            if (resolves(*state, value)) {
                ++winners;
                winner = value;
            }
        };
        race({[&] { attempt(1); }, [&] { attempt(2); }, [&] { attempt(3); }});
        EXPECT_EQ(1, winners);
        EXPECT_EQ(winner, state->get());
    }
}

TEST(FutureConcurrency, OneOfSeveralReadersGetsTheValue) {
    for (int round = 0; round < rounds; ++round) {
        const auto state = std::make_shared<State>();
        std::atomic<int> values{0};
        std::atomic<int> refusals{0};
        const auto read = [&] {
            try {
                values += state->get();
            } catch (const std::runtime_error& thrown) {
                EXPECT_STREQ(alreadyTaken, thrown.what());
                ++refusals;
            }
        };
        race({read, read, read, [&] { state->setValue(1); }});
        EXPECT_EQ(1, values);
        EXPECT_EQ(2, refusals);
    }
}

TEST(FutureConcurrency, OneOfSeveralCallsReturnsTheFuture) {
    for (int round = 0; round < rounds; ++round) {
        Promise<int> promise;
        std::atomic<int> handedOut{0};
        const auto fetch = [&] {
            try {
                std::ignore = promise.getFuture();
                ++handedOut;
            } catch (const std::runtime_error&) {
            }
        };
        race({fetch, fetch, fetch});
        EXPECT_EQ(1, handedOut);
    }
}

TEST(FutureConcurrency, AContinuationAttachedDuringTheResolutionRunsOnce) {
    for (int round = 0; round < rounds; ++round) {
        const auto state = std::make_shared<State>();
        std::atomic<int> sum{0};
        race({[&] { Future<int>(state).then([&](Future<int>& future) { sum += future.get(); }); },
              [&] { state->setValue(1); }});
        EXPECT_EQ(1, sum);
    }
}

TEST(FutureConcurrency, CancellingAndResolvingAtTheSameTimeHaveOneOutcome) {
    for (int round = 0; round < rounds; ++round) {
        const auto state = std::make_shared<State>();
        std::atomic<int> cancellations{0};
        const auto cancel = [&] { cancellations += state->cancel(); };
        race({cancel, cancel, [&] { state->setValue(1); }});
        if (cancellations == 0)
            EXPECT_EQ(1, state->get());
        else
            test::expectThrows<std::runtime_error>(cancelled, [&] { state->get(); });
        EXPECT_LE(cancellations, 1);
    }
}

TEST(FutureConcurrency, APromiseDestroyedWhileItsFutureIsReadFailsIt) {
    for (int round = 0; round < rounds; ++round) {
        std::optional<Promise<int>> promise(std::in_place);
        Future<int> future = promise->getFuture();
        std::string text;
        race({[&] { promise.reset(); },
              [&] {
                  try {
                      future.get();
                  } catch (const std::runtime_error& thrown) {
                      text = thrown.what();
                  }
              }});
        EXPECT_EQ(abandoned, text);
    }
}

} // namespace connector
