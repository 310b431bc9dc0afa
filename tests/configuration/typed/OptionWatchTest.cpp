#include "../RecordingSubscriber.hpp"
#include "../ScriptedSource.hpp"
#include "Crossroads.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/OptionReading.hpp>
#include <connector/configuration/typed/OptionWatch.hpp>

#include <atomic>
#include <functional>
#include <optional>
#include <thread>
#include <vector>

namespace {

using namespace std::string_literals;
using namespace connector::configuration;
using connector::reactive_streams::Subscriber;
using connector::reactive_streams::Subscription;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Without ==.
struct Opaque {
    int number;
};

/// Its conversion does what the test sets.
struct Hooked {
    int number;
    inline static std::function<void(int)> onConvert;
};

/// A plain subscriber that does what the test sets.
class Plain : public Subscriber<OptionValue> {
public:
    explicit Plain(std::function<void(const OptionValue&)> newOnValue)
        : onValue(std::move(newOnValue)) {}
    void onSubscribe(std::weak_ptr<Subscription> link) override { link.lock()->request(1000000); }
    void onComplete() override {}
    void onNext(const OptionValue& value) override { onValue(value); }
    void onError(std::exception_ptr) override {}

private:
    std::function<void(const OptionValue&)> onValue;
};

} // namespace

template <>
struct connector::configuration::OptionConverter<Opaque> {
    static Opaque convert(const OptionValue& value) { return {optionCast<int>(value)}; }
    static std::string typeName() { return "opaque"; }
};

template <>
struct connector::configuration::OptionConverter<Hooked> {
    static Hooked convert(const OptionValue& value) {
        const int number = optionCast<int>(value);
        Hooked::onConvert(number);
        return {number};
    }
    static std::string typeName() { return "hooked"; }
};

namespace {

class OptionWatching : public ::testing::Test {
protected:
    void set(OptionValue value) { configuration->set("key", std::move(value)).get(); }

    OptionWatch watch() {
        return onChange<int>(configuration, "key", [this](int value) { told.push_back(value); });
    }

    OptionWatch watchBoth() {
        return onChange<int>(
            configuration, "key", [this](int value) { events.push_back(std::to_string(value)); },
            [this](const InvalidOption& invalid) { events.push_back(invalid.what()); });
    }

    void subscribe(std::function<void(const OptionValue&)> onValue) {
        configuration->watchOption("key")->subscribe(std::make_shared<Plain>(std::move(onValue)));
    }

    /// A source whose changes are reported while no lock is held.
    std::shared_ptr<test::ScriptedSource> addSource(OptionValue value) {
        auto source = std::make_shared<test::ScriptedSource>(
            journal, "source", std::map<std::string, OptionValue>{{"key", std::move(value)}});
        configuration->addSource("source", "", -1, true, source).get();
        return source;
    }

    test::Journal journal; // outlives the sources
    std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    std::vector<int> told;
    std::vector<std::string> events;
};

TEST_F(OptionWatching, TellsTheValueAtOnceAndAfterEveryChange) {
    set(1);
    const OptionWatch watching = watch();
    EXPECT_THAT(told, ElementsAre(1));
    set("2"s);
    set(3);
    EXPECT_THAT(told, ElementsAre(1, 2, 3));
}

TEST_F(OptionWatching, WaitsForAnOptionThatIsNotThere) {
    const OptionWatch watching = watch();
    EXPECT_THAT(told, IsEmpty());
    set(1);
    EXPECT_THAT(told, ElementsAre(1));
}

TEST_F(OptionWatching, TheSameValueIsNotToldTwiceInARow) {
    set(1);
    const OptionWatch watching = watch();
    set(1);
    set("1"s); // the same int
    configuration->set("key", 7, "default").get();
    EXPECT_THAT(told, ElementsAre(1));
    set(2);
    set(1);
    EXPECT_THAT(told, ElementsAre(1, 2, 1));
}

TEST_F(OptionWatching, WithoutEqualityEveryChangeIsTold) {
    set(1);
    const OptionWatch watching = onChange<Opaque>(
        configuration, "key", [this](const Opaque& value) { told.push_back(value.number); });
    set(1);
    EXPECT_THAT(told, ElementsAre(1, 1));
    const OptionWatch list =
        onChange<std::vector<Opaque>>(configuration, "list", [](const std::vector<Opaque>&) {});
}

TEST_F(OptionWatching, WithoutAValueTheLastOneStays) {
    set(1);
    const OptionWatch watching = watch();
    configuration->removeSource("override").get();
    EXPECT_THAT(told, ElementsAre(1));
    configuration->set("key", 2, "default").get();
    EXPECT_THAT(told, ElementsAre(1, 2));
}

TEST_F(OptionWatching, InvalidValuesAreToldApartAndNotTwiceInARow) {
    const std::string bad = "Option key from source override is not convertible to int: \"bad\"";
    const std::string worse =
        "Option key from source override is not convertible to int: \"worse\"";
    set("bad"s);
    const OptionWatch watching = watchBoth();
    EXPECT_THAT(events, ElementsAre(bad));
    set("bad"s);
    EXPECT_THAT(events, ElementsAre(bad));
    set("worse"s);
    set(1);
    set("worse"s);
    set(1);
    EXPECT_THAT(events, ElementsAre(bad, worse, "1", worse, "1"));
}

TEST_F(OptionWatching, AnInvalidSecretIsToldAgainWhenItIsAnotherOne) {
    std::vector<std::string> problems;
    const OptionWatch watching = onChange<int>(
        configuration, "password", [](int) {},
        [&](const InvalidOption& invalid) { problems.push_back(invalid.what()); });
    configuration->set("password", "one"s).get();
    configuration->set("password", "two"s).get();
    const std::string text =
        "Option password from source override is not convertible to int: ******";
    EXPECT_THAT(problems, ElementsAre(text, text));
}

TEST_F(OptionWatching, WithoutAnInvalidHandlerAnInvalidValueLeavesNoTrace) {
    set(1);
    const OptionWatch watching = watch();
    set("bad"s);
    set(1);
    EXPECT_THAT(told, ElementsAre(1)); // to the handler nothing has changed
    set(2);
    EXPECT_THAT(told, ElementsAre(1, 2));
}

TEST_F(OptionWatching, ANestedChangeLeavesNoOldValueBehind) {
    std::vector<int> plain;
    subscribe([this](const OptionValue& value) {
        if (value == OptionValue(1))
            set(2);
    });
    const OptionWatch watching = watch();
    subscribe([&plain](const OptionValue& value) { plain.push_back(boost::get<int>(value)); });
    set(1);
    EXPECT_THAT(told, ElementsAre(2));
    EXPECT_THAT(plain, ElementsAre(2, 1)); // as the plain streams have it
}

TEST_F(OptionWatching, AHandlerThatChangesItsOptionIsCalledAgainAfterwards) {
    int depth = 0;
    const OptionWatch watching = onChange<int>(configuration, "key", [&](int value) {
        EXPECT_EQ(1, ++depth);
        told.push_back(value);
        if (value < 3)
            set(value + 1);
        --depth;
    });
    set(1);
    EXPECT_THAT(told, ElementsAre(1, 2, 3));
}

TEST_F(OptionWatching, WhatAHandlerThrowsIsReportedAndStopsNothing) {
    set(1);
    ::testing::internal::CaptureStderr();
    const OptionWatch watching = onChange<int>(configuration, "key", [&](int value) {
        told.push_back(value);
        if (value == 2)
            set(3);
        throw std::runtime_error("handler");
    });
    set(2);
    const OptionWatch other = watch();
    const std::string line = "Error in configuration value subscriber: key\n";
    EXPECT_EQ(line + line + line, ::testing::internal::GetCapturedStderr());
    EXPECT_THAT(told, ElementsAre(1, 2, 3, 3));
}

TEST_F(OptionWatching, EndsWithTheWatch) {
    {
        const OptionWatch watching = watch();
        set(1);
    }
    set(2);
    EXPECT_THAT(told, ElementsAre(1));
}

TEST_F(OptionWatching, LetsItsHandlerGoWithTheWatch) {
    const auto captured = std::make_shared<int>(1);
    auto watching = std::make_optional(onChange<int>(configuration, "key", [captured](int) {}));
    EXPECT_EQ(2, captured.use_count());
    watching.reset();
    EXPECT_EQ(1, captured.use_count());
}

TEST_F(OptionWatching, MovesToAnotherOwner) {
    OptionWatch first = watch();
    OptionWatch second(std::move(first));
    set(1);
    first = OptionWatch();
    set(2);
    OptionWatch third;
    third = std::move(second);
    set(3);
    third = OptionWatch();
    set(4);
    EXPECT_THAT(told, ElementsAre(1, 2, 3));
}

TEST_F(OptionWatching, AssigningEndsTheWatchThatWasOwned) {
    OptionWatch watching = watch();
    watching = onChange<int>(configuration, "other", [this](int value) { told.push_back(-value); });
    set(1);
    configuration->set("other", 2).get();
    EXPECT_THAT(told, ElementsAre(-2));
}

TEST_F(OptionWatching, AHandlerCanEndItsOwnWatch) {
    std::optional<OptionWatch> watching;
    const auto captured = std::make_shared<int>(1);
    watching = onChange<int>(configuration, "key", [&, captured](int value) {
        watching.reset();
        told.push_back(value + *captured); // the handler is still there
        set(value + 1);
    });
    set(1);
    EXPECT_THAT(told, ElementsAre(2));
    EXPECT_EQ(1, captured.use_count());
}

TEST_F(OptionWatching, AHandlerCanMakeAndEndOthers) {
    std::vector<OptionWatch> others;
    const OptionWatch watching = onChange<int>(configuration, "key", [&](int value) {
        if (value % 2 == 1)
            others.push_back(watch());
        else
            others.clear();
    });
    set(1);
    set(2);
    set(3);
    EXPECT_THAT(told, ElementsAre(1, 3));
}

TEST_F(OptionWatching, DoesNotKeepTheConfigurationAliveAndOutlivesIt) {
    set(1);
    const OptionWatch watching = watch();
    const std::weak_ptr<ConfigurationImpl> alive = configuration;
    configuration.reset();
    EXPECT_TRUE(alive.expired());
    EXPECT_THAT(told, ElementsAre(1));
}

TEST_F(OptionWatching, NothingCanBeFollowedWithoutConfigurationOrHandler) {
    test::expectThrows<std::invalid_argument>("A null configuration cannot be followed.", [] {
        static_cast<void>(onChange<int>(nullptr, "key", [](int) {}));
    });
    test::expectThrows<std::invalid_argument>("An empty handler cannot be called.", [this] {
        static_cast<void>(onChange<int>(configuration, "key", nullptr));
    });
}

TEST_F(OptionWatching, WhatASourceThrowsAtFirstPassesAndLaterIsReported) {
    const auto source = addSource(1);
    int calls = 0;
    source->onGet = [&calls](const std::string&) {
        if (++calls == 2) // watchOption looks first
            throw std::logic_error("source");
    };
    EXPECT_THROW(static_cast<void>(watch()), std::logic_error);
    const OptionWatch watching = watch();
    calls = 0;
    ::testing::internal::CaptureStderr();
    source->change("key", 2);
    EXPECT_EQ("Error in configuration value subscriber: key\n",
              ::testing::internal::GetCapturedStderr());
    source->change("key", 3);
    EXPECT_THAT(told, ElementsAre(1, 3));
}

TEST_F(OptionWatching, AChangeDuringACallOnAnotherThreadIsToldAfterwardsOnce) {
    test::Gate entered, left;
    const OptionWatch watching = onChange<int>(configuration, "key", [&](int value) {
        told.push_back(value);
        if (value == 1) {
            entered.open();
            left.wait();
        }
    });
    const auto source = addSource(0);
    std::thread slow([&] { source->change("key", 1); });
    entered.wait();
    configuration->set("key", 7).get(); // hidden, and does not wait for the call
    configuration->removeSource("source").get();
    configuration->set("key", 8).get();
    configuration->set("key", 9).get();
    left.open();
    slow.join();
    EXPECT_THAT(told, ElementsAre(0, 1, 9));
}

TEST_F(OptionWatching, TheDestructorWaitsForACallOnAnotherThread) {
    const auto source = addSource(0);
    test::Gate entered;
    std::atomic<bool> isOver{false};
    auto watching = std::make_optional(onChange<int>(configuration, "key", [&](int value) {
        if (value == 0)
            return;
        entered.open();
        configuration->get("key").get(); // the destructor holds no lock meanwhile
        std::this_thread::yield();
        isOver = true;
    }));
    std::thread changing([&] { source->change("key", 1); });
    entered.wait();
    watching.reset();
    EXPECT_TRUE(isOver);
    changing.join();
}

TEST_F(OptionWatching, InsideAnotherHandlerTheDestructorDoesNotWait) {
    const auto source = addSource(0);
    test::Gate entered, ended;
    auto watching = std::make_optional(onChange<int>(configuration, "key", [&](int value) {
        told.push_back(value);
        if (value == 1) {
            entered.open();
            ended.wait(); // opened by the thread that destroys this watch
        }
    }));
    std::thread changing([&] { source->change("key", 1); });
    entered.wait();
    const OptionWatch other = onChange<int>(configuration, "other", [&](int) { watching.reset(); });
    configuration->set("other", 1).get(); // under the configuration's mutex
    configuration->removeSource("source").get();
    ended.open();
    changing.join();
    set(2);
    EXPECT_THAT(told, ElementsAre(0, 1)); // no call began after the end
}

TEST_F(OptionWatching, AWatchThatEndsWhileItsValueIsReadTellsNothing) {
    test::Gate entered, ended;
    Hooked::onConvert = [&](int number) {
        if (number == 1) {
            entered.open();
            ended.wait();
        }
    };
    const auto source = addSource(0);
    auto watching = std::make_optional(onChange<Hooked>(
        configuration, "key", [this](const Hooked& value) { told.push_back(value.number); }));
    std::thread changing([&] { source->change("key", 1); });
    entered.wait();
    watching.reset(); // waits for calls of the handler only
    ::testing::internal::CaptureStderr();
    ended.open();
    changing.join();
    EXPECT_EQ("",
              ::testing::internal::GetCapturedStderr()); // a call would fail: the handler is gone
    Hooked::onConvert = nullptr;
    EXPECT_THAT(told, ElementsAre(0));
}

} // namespace
