/// dispatch: which messages the service accepts.
#include "configuration/service/RecordingProvider.hpp"
#include "support/Expect.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <tuple>

namespace {

using namespace connector::configuration;
using connector::Address;
using connector::Context;
using connector::Message;
using test::dispatch;
using test::expectThrows;
using test::MessagePtr;
using test::RecordingProvider;
using test::Reply;
using test::send;
using test::TrackedGet;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string notRunning = "Service exists but is not running.";
const std::string expected =
    "Incorrect message type. Expected: "
    "N9connector14ServiceMessageINS_13configuration28ConfigurationServiceProviderEEE but found ";

std::shared_ptr<RecordingProvider> makeRunning() {
    auto provider = std::make_shared<RecordingProvider>();
    provider->start();
    return provider;
}

void expectNotRunning(Reply reply) {
    expectThrows<std::runtime_error>(notRunning, [&] { reply.get(); });
}

void expectWrongClass(const std::string& found, Reply reply) {
    expectThrows<std::invalid_argument>(expected + found, [&] { reply.get(); });
}

TEST(Dispatch, FailsBeforeStart) {
    const auto provider = std::make_shared<RecordingProvider>();
    expectNotRunning(send<ConfigurationGet>(*provider, "key"));
    EXPECT_THAT(provider->calls, IsEmpty());
}

TEST(Dispatch, FailsAfterStop) {
    const auto provider = makeRunning();
    provider->stop();
    expectNotRunning(send<ConfigurationGet>(*provider, "key"));
    EXPECT_THAT(provider->calls, IsEmpty());
}

TEST(Dispatch, WorksAfterARestart) {
    const auto provider = makeRunning();
    provider->stop();
    provider->start();
    std::ignore = send<ConfigurationGet>(*provider, "key");
    EXPECT_THAT(provider->calls, ElementsAre("Get"));
}

TEST(Dispatch, WhileNotRunningLeavesTheMessageWithTheCaller) {
    bool isDestroyed = false;
    MessagePtr message = std::make_unique<TrackedGet>(isDestroyed, "key");
    expectNotRunning(dispatch(*std::make_shared<RecordingProvider>(), message));
    EXPECT_NE(nullptr, message);
    EXPECT_FALSE(isDestroyed);
}

TEST(Dispatch, WhileNotRunningDoesNotCheckTheMessage) {
    const auto provider = std::make_shared<RecordingProvider>();
    expectNotRunning(dispatch(*provider, nullptr));
    expectNotRunning(send<Message>(*provider));
    expectNotRunning(send<ConfigurationOptionResponse>(*provider));
}

TEST(Dispatch, WhileNotRunningNeedsNoOwnerOfTheProvider) {
    RecordingProvider provider;
    expectNotRunning(send<ConfigurationGet>(provider, "key"));
}

/// Only the running flag synchronises the two threads.
TEST(Dispatch, SeesTheStartOnAnotherThread) {
    const auto provider = std::make_shared<RecordingProvider>();
    std::thread other([&] {
        MessagePtr message = std::make_unique<ConfigurationGet>("key");
        while (message) {
            std::ignore = dispatch(*provider, message);
            std::this_thread::yield();
        }
    });
    provider->start();
    other.join();
    EXPECT_THAT(provider->calls, ElementsAre("Get"));
}

TEST(Dispatch, SeesTheStopOnAnotherThread) {
    const auto provider = makeRunning();
    std::thread other([&] {
        MessagePtr message;
        while (!message) {
            message = std::make_unique<ConfigurationGet>("key");
            std::ignore = dispatch(*provider, message);
            std::this_thread::yield();
        }
    });
    provider->stop();
    other.join();
    EXPECT_FALSE(provider->isRunning());
}

TEST(Dispatch, OfANullMessageThrows) {
    EXPECT_THROW(std::ignore = dispatch(*makeRunning(), nullptr), std::bad_typeid);
}

TEST(Dispatch, OfEachRequestCallsItsHandler) {
    const auto provider = makeRunning();
    std::ignore = send<ConfigurationGet>(*provider, "key");
    std::ignore = send<ConfigurationSet>(*provider, "key", 7, "");
    std::ignore = send<ConfigurationKeys>(*provider);
    std::ignore = send<AddPropertyFileSource>(*provider, "site", "", 5, true, u"path");
    EXPECT_THAT(provider->calls, ElementsAre("Get", "Set", "Keys", "AddPropertyFileSource"));
}

TEST(Dispatch, OfAReplyFails) {
    const auto provider = makeRunning();
    expectWrongClass("N9connector13configuration25ConfigurationKeysResponseE",
                     send<ConfigurationKeysResponse>(*provider, std::set<std::string>{"a"}));
    expectWrongClass("N9connector13configuration27ConfigurationOptionResponseE",
                     send<ConfigurationOptionResponse>(*provider));
    EXPECT_THAT(provider->calls, IsEmpty());
}

TEST(Dispatch, OfABareMessageFails) {
    expectWrongClass("N9connector7MessageE", send<Message>(*makeRunning()));
}

class OtherService;

/// A request of some other service.
class OtherRequest : public connector::ServiceMessage<OtherService> {
public:
    Reply deliver(std::shared_ptr<OtherService>, MessagePtr&&, Address&&,
                  std::shared_ptr<Context>&&) override {
        throw std::logic_error("delivered to the wrong service");
    }
};

TEST(Dispatch, OfARequestOfAnotherServiceFails) {
    expectWrongClass(typeid(OtherRequest).name(), send<OtherRequest>(*makeRunning()));
}

TEST(Dispatch, ThatFailsLeavesTheMessageWithTheCaller) {
    MessagePtr message = std::make_unique<ConfigurationOptionResponse>();
    std::ignore = dispatch(*makeRunning(), message);
    EXPECT_NE(nullptr, message);
}

/// A request class of the application, which delivers itself in its own way.
class OwnRequest : public connector::ServiceMessage<ConfigurationServiceProvider> {
public:
    explicit OwnRequest(std::shared_ptr<ConfigurationServiceProvider>& newReceiver)
        : receiver(newReceiver) {}

    Reply deliver(std::shared_ptr<ConfigurationServiceProvider> provider, MessagePtr&& owner,
                  Address&&, std::shared_ptr<Context>&&) override {
        EXPECT_EQ(this, owner.get());
        receiver = provider;
        return connector::makeReadyFuture<MessagePtr>(std::move(owner));
    }

private:
    std::shared_ptr<ConfigurationServiceProvider>& receiver;
};

TEST(Dispatch, LetsARequestOfTheApplicationDeliverItself) {
    const auto provider = makeRunning();
    std::shared_ptr<ConfigurationServiceProvider> receiver;
    const MessagePtr reply = send<OwnRequest>(*provider, receiver).get();
    EXPECT_EQ(provider, receiver);
    EXPECT_NO_THROW(test::as<OwnRequest>(reply));
}

TEST(Dispatch, ToAProviderOnTheStackThrows) {
    RecordingProvider provider;
    provider.start();
    MessagePtr message = std::make_unique<ConfigurationGet>("key");
    EXPECT_THROW(std::ignore = dispatch(provider, message), std::bad_weak_ptr);
    EXPECT_NE(nullptr, message);
    EXPECT_THAT(provider.calls, IsEmpty());
}

TEST(Dispatch, ToAProviderOnTheStackChecksTheMessageFirst) {
    RecordingProvider provider;
    provider.start();
    EXPECT_THROW(std::ignore = dispatch(provider, nullptr), std::bad_typeid);
    expectWrongClass("N9connector7MessageE", send<Message>(provider));
}

TEST(Dispatch, TakesTheMessageAndDestroysIt) {
    bool isDestroyed = false;
    MessagePtr message = std::make_unique<TrackedGet>(isDestroyed, "key");
    std::ignore = dispatch(*makeRunning(), message);
    EXPECT_EQ(nullptr, message);
    EXPECT_TRUE(isDestroyed);
}

TEST(Dispatch, PassesAddressAndContext) {
    const auto provider = makeRunning();
    auto context = std::make_shared<Context>();
    const std::shared_ptr<Context> sent = context;
    provider->answer = [&](const RecordingProvider::Call& call) {
        EXPECT_EQ("sender", call.address.toString());
        EXPECT_EQ(sent, call.context);
        return Reply();
    };
    std::ignore = provider->dispatch(std::make_unique<ConfigurationGet>("key"), Address("sender"),
                                     std::move(context));
    EXPECT_THAT(provider->calls, ElementsAre("Get"));
}

TEST(Dispatch, KeepsTheProviderAliveUntilItReturns) {
    auto provider = makeRunning();
    const std::weak_ptr<RecordingProvider> observer = provider;
    provider->answer = [&](const RecordingProvider::Call&) {
        provider.reset();
        EXPECT_FALSE(observer.expired());
        return Reply();
    };
    RecordingProvider& target = *provider;
    std::ignore = send<ConfigurationGet>(target, "key");
    EXPECT_EQ(nullptr, provider);
    EXPECT_TRUE(observer.expired());
}

TEST(Dispatch, KeepsNoPointerToTheProviderAfterwards) {
    const auto provider = makeRunning();
    const Reply reply = send<ConfigurationGet>(*provider, "key");
    EXPECT_EQ(1, provider.use_count());
}

TEST(Dispatch, ReturnsWhatTheHandlerReturns) {
    const auto provider = makeRunning();
    provider->answer = [](const RecordingProvider::Call&) {
        return connector::makeFailedFuture<MessagePtr>(std::domain_error("the handler failed"));
    };
    Reply reply = send<ConfigurationGet>(*provider, "key");
    expectThrows<std::domain_error>("the handler failed", [&] { reply.get(); });
}

TEST(Dispatch, ThrowsWhatTheHandlerThrows) {
    const auto provider = makeRunning();
    provider->answer = [](const RecordingProvider::Call&) -> Reply {
        throw std::domain_error("the handler threw");
    };
    bool isDestroyed = false;
    expectThrows<std::domain_error>("the handler threw", [&] {
        std::ignore = send<TrackedGet>(*provider, isDestroyed, "key");
    });
    EXPECT_TRUE(isDestroyed);
}

TEST(Dispatch, RunsTheHandlerOnTheCallingThread) {
    const auto provider = makeRunning();
    std::thread::id handlerThread;
    provider->answer = [&](const RecordingProvider::Call&) {
        handlerThread = std::this_thread::get_id();
        return Reply();
    };
    std::ignore = send<ConfigurationGet>(*provider, "key");
    EXPECT_EQ(std::this_thread::get_id(), handlerThread);
}

TEST(Dispatch, FromAHandlerIsHandled) {
    const auto provider = makeRunning();
    provider->answer = [&](const RecordingProvider::Call&) {
        return provider->calls.size() == 1 ? send<ConfigurationKeys>(*provider) : Reply();
    };
    std::ignore = send<ConfigurationGet>(*provider, "key");
    EXPECT_THAT(provider->calls, ElementsAre("Get", "Keys"));
}

} // namespace
