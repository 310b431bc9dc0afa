/// How a request delivers itself to the provider.
#include "configuration/service/RecordingProvider.hpp"
#include "support/Expect.hpp"

#include <connector/async/Promise.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

namespace {

using namespace connector::configuration;
using connector::Address;
using connector::Context;
using connector::Message;
using test::expectThrows;
using test::MessagePtr;
using test::RecordingProvider;
using test::Reply;
using test::TrackedGet;
using testing::ElementsAre;
using testing::IsEmpty;

using RequestOfTheService = connector::ServiceMessage<ConfigurationServiceProvider>;

class Deliver : public testing::Test {
protected:
    /// Calls deliver of `request` with `owner`.
    Reply deliver(RequestOfTheService& request, MessagePtr& owner) {
        return request.deliver(provider, std::move(owner), Address(), nullptr);
    }

    /// Calls deliver of the request in `owner`.
    Reply deliver(MessagePtr& owner) {
        return deliver(dynamic_cast<RequestOfTheService&>(*owner), owner);
    }

    template <typename Request, typename... Arguments>
    Reply deliverNew(Arguments&&... arguments) {
        MessagePtr owner = std::make_unique<Request>(std::forward<Arguments>(arguments)...);
        return deliver(owner);
    }

    const std::shared_ptr<RecordingProvider> provider = std::make_shared<RecordingProvider>();
};

TEST_F(Deliver, CallsTheHandlerOfItsClassOnce) {
    std::ignore = deliverNew<ConfigurationGet>("key");
    std::ignore = deliverNew<ConfigurationSet>("key", 7, "");
    std::ignore = deliverNew<ConfigurationKeys>();
    std::ignore = deliverNew<AddPropertyFileSource>("site", "", 5, true, u"path");
    EXPECT_THAT(provider->calls, ElementsAre("Get", "Set", "Keys", "AddPropertyFileSource"));
}

TEST_F(Deliver, PassesTheRequestItself) {
    MessagePtr owner = std::make_unique<ConfigurationGet>("key");
    const Message* const request = owner.get();
    provider->answer = [&](const RecordingProvider::Call& call) {
        EXPECT_EQ(request, call.request);
        return Reply();
    };
    std::ignore = deliver(owner);
    EXPECT_THAT(provider->calls, ElementsAre("Get"));
}

TEST_F(Deliver, EmptiesTheOwnerBeforeTheHandlerRuns) {
    MessagePtr owner = std::make_unique<ConfigurationGet>("key");
    provider->answer = [&](const RecordingProvider::Call&) {
        EXPECT_EQ(nullptr, owner);
        return Reply();
    };
    std::ignore = deliver(owner);
    EXPECT_EQ(nullptr, owner);
    EXPECT_THAT(provider->calls, ElementsAre("Get"));
}

TEST_F(Deliver, DestroysTheRequestAfterTheHandlerAndBeforeItReturns) {
    bool isDestroyed = false;
    provider->answer = [&](const RecordingProvider::Call&) {
        EXPECT_FALSE(isDestroyed);
        return Reply();
    };
    std::ignore = deliverNew<TrackedGet>(isDestroyed, "key");
    EXPECT_TRUE(isDestroyed);
    EXPECT_THAT(provider->calls, ElementsAre("Get"));
}

TEST_F(Deliver, DoesNotDestroyARequestThatTheHandlerKeeps) {
    bool isDestroyed = false;
    provider->keepsRequests = true;
    std::ignore = deliverNew<TrackedGet>(isDestroyed, "key");
    EXPECT_FALSE(isDestroyed);
    EXPECT_EQ("key", test::as<ConfigurationGet>(provider->kept).key);
    provider->kept.reset();
    EXPECT_TRUE(isDestroyed);
}

TEST_F(Deliver, PassesTheAddress) {
    MessagePtr owner = std::make_unique<ConfigurationGet>("key");
    Address address("sender");
    provider->answer = [&](const RecordingProvider::Call& call) {
        EXPECT_EQ(&address, &call.address) << "passed by reference, not copied";
        EXPECT_EQ("sender", call.address.toString());
        return Reply();
    };
    auto& request = dynamic_cast<RequestOfTheService&>(*owner);
    std::ignore = request.deliver(provider, std::move(owner), std::move(address), nullptr);
    EXPECT_THAT(provider->calls, ElementsAre("Get"));
}

TEST_F(Deliver, LetsTheHandlerTakeTheContext) {
    MessagePtr owner = std::make_unique<ConfigurationGet>("key");
    auto context = std::make_shared<Context>();
    const std::shared_ptr<Context> expected = context;
    std::shared_ptr<Context> taken;
    provider->answer = [&](const RecordingProvider::Call& call) {
        taken = std::move(call.context);
        return Reply();
    };
    auto& request = dynamic_cast<RequestOfTheService&>(*owner);
    std::ignore = request.deliver(provider, std::move(owner), Address(), std::move(context));
    EXPECT_EQ(expected, taken);
    EXPECT_EQ(nullptr, context);
}

TEST_F(Deliver, ReturnsTheReplyOfTheHandler) {
    const Message* expected = nullptr;
    provider->answer = [&](const RecordingProvider::Call&) {
        auto reply = std::make_unique<Message>();
        expected = reply.get();
        return connector::makeReadyFuture<MessagePtr>(std::move(reply));
    };
    const MessagePtr reply = deliverNew<ConfigurationGet>("key").get();
    EXPECT_NE(nullptr, reply);
    EXPECT_EQ(expected, reply.get());
}

TEST_F(Deliver, ReturnsAFailedFuture) {
    provider->answer = [](const RecordingProvider::Call&) {
        return connector::makeFailedFuture<MessagePtr>(std::domain_error("the handler failed"));
    };
    Reply reply = deliverNew<ConfigurationGet>("key");
    expectThrows<std::domain_error>("the handler failed", [&] { reply.get(); });
}

TEST_F(Deliver, ReturnsAPendingFuture) {
    connector::Promise<MessagePtr> promise;
    provider->answer = [&](const RecordingProvider::Call&) { return promise.getFuture(); };
    Reply reply = deliverNew<ConfigurationGet>("key");
    promise.setValue(std::make_unique<ConfigurationOptionResponse>());
    EXPECT_NO_THROW(test::as<ConfigurationOptionResponse>(reply.get()));
}

TEST_F(Deliver, ReturnsAnInvalidFuture) {
    provider->answer = [](const RecordingProvider::Call&) { return Reply(); };
    EXPECT_FALSE(deliverNew<ConfigurationGet>("key").valid());
}

TEST_F(Deliver, ThrowsWhatTheHandlerThrowsAndDestroysTheRequest) {
    bool isDestroyed = false;
    provider->answer = [](const RecordingProvider::Call&) -> Reply {
        throw std::out_of_range("no such thing");
    };
    MessagePtr owner = std::make_unique<TrackedGet>(isDestroyed, "key");
    expectThrows<std::out_of_range>("no such thing", [&] { std::ignore = deliver(owner); });
    EXPECT_TRUE(isDestroyed);
    EXPECT_EQ(nullptr, owner);
}

TEST_F(Deliver, DoesNotDestroyARequestThatTheHandlerKeptBeforeItThrew) {
    bool isDestroyed = false;
    provider->keepsRequests = true;
    provider->answer = [](const RecordingProvider::Call&) -> Reply { throw 42; };
    EXPECT_THROW(std::ignore = deliverNew<TrackedGet>(isDestroyed, "key"), int);
    EXPECT_FALSE(isDestroyed);
    provider->kept.reset();
    EXPECT_TRUE(isDestroyed);
}

TEST_F(Deliver, FailsWhenTheOwnerHoldsAnotherRequest) {
    ConfigurationSet set("key", 7, "");
    MessagePtr owner = std::make_unique<ConfigurationGet>("key");
    Reply reply = deliver(set, owner);
    expectThrows<std::invalid_argument>(
        "Unable to deliver to service. Incorrect message type. Expected: "
        "N9connector13configuration16ConfigurationSetE but found "
        "N9connector13configuration16ConfigurationGetE",
        [&] { reply.get(); });
    EXPECT_THAT(provider->calls, IsEmpty());
}

/// The check compares objects, although the text of the failure names types.
TEST_F(Deliver, FailsWhenTheOwnerHoldsAnotherRequestOfTheSameClass) {
    ConfigurationGet get("key");
    MessagePtr owner = std::make_unique<ConfigurationGet>("key");
    Reply reply = deliver(get, owner);
    expectThrows<std::invalid_argument>(
        "Unable to deliver to service. Incorrect message type. Expected: "
        "N9connector13configuration16ConfigurationGetE but found "
        "N9connector13configuration16ConfigurationGetE",
        [&] { reply.get(); });
    EXPECT_THAT(provider->calls, IsEmpty());
}

TEST_F(Deliver, FailsWhenTheOwnerHoldsAReply) {
    ConfigurationKeys keys;
    MessagePtr owner = std::make_unique<ConfigurationKeysResponse>(std::set<std::string>());
    Reply reply = deliver(keys, owner);
    expectThrows<std::invalid_argument>(
        "Unable to deliver to service. Incorrect message type. Expected: "
        "N9connector13configuration17ConfigurationKeysE but found "
        "N9connector13configuration25ConfigurationKeysResponseE",
        [&] { reply.get(); });
}

TEST_F(Deliver, FailsWhenTheOwnerHoldsABareMessage) {
    AddPropertyFileSource add("site", "", 5, true, u"path");
    MessagePtr owner = std::make_unique<Message>();
    Reply reply = deliver(add, owner);
    expectThrows<std::invalid_argument>(
        "Unable to deliver to service. Incorrect message type. Expected: "
        "N9connector13configuration21AddPropertyFileSourceE but found N9connector7MessageE",
        [&] { reply.get(); });
}

class DerivedGet : public ConfigurationGet {
public:
    using ConfigurationGet::ConfigurationGet;
};

TEST_F(Deliver, NamesTheDynamicClassOfTheRequest) {
    DerivedGet derived("key");
    MessagePtr owner = std::make_unique<Message>();
    Reply reply = deliver(derived, owner);
    expectThrows<std::invalid_argument>(
        std::string("Unable to deliver to service. Incorrect message type. Expected: ") +
            typeid(DerivedGet).name() + " but found N9connector7MessageE",
        [&] { reply.get(); });
}

TEST_F(Deliver, ThatFailsLeavesTheMessageWithItsOwner) {
    bool isDestroyed = false;
    MessagePtr owner = std::make_unique<TrackedGet>(isDestroyed, "key");
    const Message* const held = owner.get();
    ConfigurationGet get("key");
    std::ignore = deliver(get, owner);
    EXPECT_EQ(held, owner.get());
    EXPECT_FALSE(isDestroyed);
}

TEST_F(Deliver, ThrowsWhenTheOwnerIsEmpty) {
    ConfigurationGet get("key");
    MessagePtr owner;
    EXPECT_THROW(std::ignore = deliver(get, owner), std::bad_typeid);
    EXPECT_THAT(provider->calls, IsEmpty());
}

} // namespace
