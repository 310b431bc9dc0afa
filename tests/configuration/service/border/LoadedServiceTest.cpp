/// A program that does not link the configuration library and gets it with a plugin at run time. What
/// it knows of the templates of the message framework it has compiled itself: there are two copies of
/// their type information in the process, and they count as one.
#include "configuration/service/border/LoadedPlugin.hpp"
#include "configuration/service/border/Plugin.hpp"
#include "support/Expect.hpp"

#include <connector/ServiceMessage.hpp>
#include <connector/ServiceProvider.hpp>
#include <connector/configuration/service/Declarations.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using connector::Address;
using connector::Context;
using connector::Message;
using connector::configuration::ConfigurationServiceProvider;
using test::expectThrows;
using test::plugin;
using MessagePtr = std::unique_ptr<Message>;
using Reply = connector::Future<MessagePtr>;

/// Caught by its type when it has come through the library.
class OutsideError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A request that the library has never seen.
class OutsideRequest : public connector::ServiceMessage<ConfigurationServiceProvider> {
public:
    explicit OutsideRequest(bool newFails) : fails(newFails) {}

    Reply deliver(std::shared_ptr<ConfigurationServiceProvider> provider, MessagePtr&& owner,
                  Address&&, std::shared_ptr<Context>&&) override {
        EXPECT_NE(nullptr, provider);
        if (fails)
            throw OutsideError("from outside");
        return connector::makeReadyFuture<MessagePtr>(std::move(owner));
    }

private:
    const bool fails;
};

/// A message that is no request of the service.
class OutsideMessage : public Message {};

bool libraryIsLoaded() {
    return ::dlopen(TEST_LIBRARY, RTLD_NOW | RTLD_NOLOAD) != nullptr;
}

class LoadedService : public testing::Test {
protected:
    static void SetUpTestSuite() {
        ASSERT_FALSE(libraryIsLoaded()) << "this program must not link the library";
        plugin();
        ASSERT_TRUE(libraryIsLoaded());
    }

    LoadedService() { plugin().find<test::MakeProvider>("makeProvider")(provider); }

    Reply dispatch(MessagePtr message) {
        return provider->dispatch(std::move(message), Address(), nullptr);
    }

    std::shared_ptr<connector::ServiceProvider> provider;
};

TEST_F(LoadedService, AnswersARequestOfTheLibrarys) {
    MessagePtr get;
    plugin().find<test::MakeGet>("makeGet")("net.port", get);
    const MessagePtr reply = dispatch(std::move(get)).get();
    const Message& held = *reply;
    EXPECT_STREQ("N9connector13configuration27ConfigurationOptionResponseE", typeid(held).name());
}

TEST_F(LoadedService, KnowsARequestThatWasMadeOutside) {
    MessagePtr request = std::make_unique<OutsideRequest>(false);
    const Message* const sent = request.get();
    EXPECT_EQ(sent, dispatch(std::move(request)).get().get());
}

TEST_F(LoadedService, LetsTheExceptionsOfARequestThrough) {
    expectThrows<OutsideError>("from outside",
                               [&] { dispatch(std::make_unique<OutsideRequest>(true)); });
}

TEST_F(LoadedService, RefusesAMessageThatIsNoRequest) {
    Reply reply = dispatch(std::make_unique<OutsideMessage>());
    expectThrows<std::invalid_argument>(
        std::string("Incorrect message type. Expected: N9connector14ServiceMessageINS_"
                    "13configuration28ConfigurationServiceProviderEEE but found ") +
            typeid(OutsideMessage).name(),
        [&] { reply.get(); });
}

TEST_F(LoadedService, RefusesNothing) {
    EXPECT_THROW(dispatch(nullptr), std::bad_typeid);
}

TEST_F(LoadedService, RefusesEverythingWhenItWasStoppedFromOutside) {
    provider->stop();
    Reply reply = dispatch(std::make_unique<OutsideRequest>(false));
    expectThrows<std::runtime_error>("Service exists but is not running.", [&] { reply.get(); });
}

} // namespace
