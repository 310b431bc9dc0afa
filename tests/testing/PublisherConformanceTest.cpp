/// The library's publisher follows the rules except those listed in docs/reactive-streams.md; the
/// kit detects incorrect publishers.
#include <connector/async/CachedValuePublisher.hpp>
#include <connector/testing/PublisherConformance.hpp>

#include <deque>

namespace test {

namespace {

using connector::reactive_streams::CachedValuePublisher;
using connector::reactive_streams::PublisherAPI;
using connector::reactive_streams::Subscriber;
using connector::reactive_streams::Subscription;
using connector::testing::PublisherFactory;

using Cached = CachedValuePublisher<int>;

PublisherFactory<int> cachedValuePublishers() {
    PublisherFactory<int> factory;
    factory.make = [] { return std::make_shared<Cached>([] {}, 1); };
    factory.offer = [](PublisherAPI<int>& publisher, const int& value) {
        dynamic_cast<Cached&>(publisher).onNext(value);
    };
    factory.complete = [](std::shared_ptr<PublisherAPI<int>> publisher) { publisher.reset(); };
    factory.values = {1, 2, 3};
    factory.otherwise = {"1.3", "1.10", "3.9", "3.13"};
    return factory;
}

/// A publisher that a test can break in one respect. Otherwise correct, but for one thread only.
class Breakable : public PublisherAPI<int> {
public:
    struct Breaks {
        bool demand = false, order = false, null = false, silence = false, sum = false,
             recursion = false, end = false, twice = false;
    };

    explicit Breakable(Breaks newBreaks) : state(std::make_shared<State>()) {
        state->breaks = newBreaks;
    }
    ~Breakable() override {
        if (state->breaks.end || state->subscriber == nullptr)
            return;
        state->subscriber->onComplete();
        if (state->breaks.twice)
            state->subscriber->onComplete();
    }

    connector::Future<bool> completionFuture() override { return {}; }

    void subscribe(std::shared_ptr<Subscriber<int>> subscriber) override {
        if (subscriber == nullptr) {
            if (state->breaks.null)
                return;
            throw std::invalid_argument("null");
        }
        state->subscriber = std::move(subscriber);
        if (state->breaks.order)
            state->subscriber->onNext(0);
        subscription = std::make_shared<Link>(state);
        const auto kept = state->subscriber; // it may cancel
        kept->onSubscribe(subscription);
    }

    void offer(int value) {
        state->queue.push_back(value);
        state->drain();
    }

private:
    struct State {
        void drain() {
            if (isDraining && !breaks.recursion)
                return;
            isDraining = true;
            while (!queue.empty() && subscriber != nullptr && (demand > 0 || breaks.demand)) {
                demand -= demand > 0 ? 1 : 0;
                const int value = queue.front();
                queue.pop_front();
                subscriber->onNext(value);
            }
            isDraining = false;
        }

        Breaks breaks;
        std::shared_ptr<Subscriber<int>> subscriber;
        std::deque<int> queue;
        std::uint64_t demand = 0;
        bool isDraining = false;
    };

    struct Link : Subscription {
        explicit Link(std::shared_ptr<State> newState) : state(std::move(newState)) {}
        void request(std::uint64_t count) override {
            if (count == 0 && state->subscriber != nullptr)
                return state->subscriber->onError(
                    std::make_exception_ptr(std::invalid_argument("nothing")));
            const std::uint64_t sum = state->demand + count;
            state->demand = state->breaks.sum ? count : sum < count ? count : sum;
            state->drain();
        }
        void cancel() override {
            if (!state->breaks.silence)
                state->subscriber.reset();
        }
        const std::shared_ptr<State> state;
    };

    const std::shared_ptr<State> state;
    std::shared_ptr<Subscription> subscription;
};

PublisherFactory<int> breakables(Breakable::Breaks breaks = {}) {
    PublisherFactory<int> factory = cachedValuePublishers();
    factory.make = [breaks] { return std::make_shared<Breakable>(breaks); };
    factory.offer = [](PublisherAPI<int>& publisher, const int& value) {
        dynamic_cast<Breakable&>(publisher).offer(value);
    };
    factory.otherwise = {"1.3"}; // it has no lock
    return factory;
}

Breakable::Breaks breaking(bool Breakable::Breaks::*point) {
    Breakable::Breaks breaks;
    breaks.*point = true;
    return breaks;
}

} // namespace

CONNECTOR_PUBLISHER_CONFORMANCE(CachedValuePublisherConformance, cachedValuePublishers());
CONNECTOR_PUBLISHER_CONFORMANCE(BreakablePublisherConformance, breakables());

TEST(PublisherRulesTest, EachWrongPublisherIsFoundByTheRuleThatItBreaks) {
    using Breaks = Breakable::Breaks;
    using namespace connector::testing;
    const auto broken = [](bool Breaks::*point) { return breakables(breaking(point)); };
    EXPECT_EQ("a value came before one was requested",
              noMoreThanRequested(broken(&Breaks::demand)).broken);
    EXPECT_EQ("the first and only signal of subscribe is not onSubscribe",
              onSubscribeComesFirst(broken(&Breaks::order)).broken);
    EXPECT_EQ("a null subscriber was taken", onSubscribeComesFirst(broken(&Breaks::null)).broken);
    EXPECT_EQ("a signal came after the subscription was cancelled",
              aCancelledStreamIsSilent(broken(&Breaks::silence)).broken);
    EXPECT_EQ("the subscriber is kept after cancel",
              cancelReleasesTheSubscriber(broken(&Breaks::silence)).broken);
    EXPECT_EQ("two demands did not add up", demandsAddUp(broken(&Breaks::sum)).broken);
    EXPECT_EQ("request calls onNext inside of onNext, and so on",
              recursionIsBounded(broken(&Breaks::recursion)).broken);
    EXPECT_EQ("a normal end was not reported by exactly one onComplete",
              anEndIsTold(broken(&Breaks::end)).broken);
    EXPECT_EQ("a signal came after the end", nothingFollowsTheEnd(broken(&Breaks::twice)).broken);
}

TEST(PublisherRulesTest, WhereTheLibraryDoesOtherwiseTheKitSaysSo) {
    using namespace connector::testing;
    const auto factory = cachedValuePublishers();
    EXPECT_EQ("subscribe throws for a second subscriber",
              anotherSubscriberIsServedOrTold(factory).broken);
    EXPECT_EQ("a request for nothing was not reported by onError",
              aRequestForNothingFails(factory).broken);
    EXPECT_EQ("the subscriber is kept after cancel", cancelReleasesTheSubscriber(factory).broken);
    EXPECT_FALSE(aFailureIsTold(factory).applies);
}

} // namespace test
