/// A program that does not link the configuration library but loads it with a plugin. It compiles
/// the templates of the message framework itself, so the process has two copies of their type
/// information, which must count as one.
#include "configuration/service/boundary/LoadedPlugin.hpp"
#include "configuration/service/boundary/Plugin.hpp"
#include "support/Expect.hpp"

#include <connector/ServiceMessage.hpp>
#include <connector/ServiceProvider.hpp>
#include <connector/configuration/service/Declarations.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>

namespace {

using connector::Address;
using connector::Context;
using connector::Message;
using connector::configuration::ConfigurationServiceProvider;
using test::expectThrows;
using test::plugin;
using MessagePtr = std::unique_ptr<Message>;
using Reply = connector::Future<MessagePtr>;

/// Thrown through the library and caught by its type.
class ProgramError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A request that the library has never seen.
class ProgramRequest : public connector::ServiceMessage<ConfigurationServiceProvider> {
public:
    explicit ProgramRequest(bool newFails) : fails(newFails) {}

    Reply deliver(std::shared_ptr<ConfigurationServiceProvider> provider, MessagePtr&& owner,
                  Address&&, std::shared_ptr<Context>&&) override {
        EXPECT_NE(nullptr, provider);
        if (fails)
            throw ProgramError("from the program");
        return connector::makeReadyFuture<MessagePtr>(std::move(owner));
    }

private:
    const bool fails;
};

/// A message that is not a request of the service.
class ProgramMessage : public Message {};

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

TEST_F(LoadedService, RepliesToARequestOfTheLibrary) {
    MessagePtr get;
    plugin().find<test::MakeGet>("makeGet")("net.port", get);
    const MessagePtr reply = dispatch(std::move(get)).get();
    const Message& held = *reply;
    EXPECT_STREQ("N9connector13configuration27ConfigurationOptionResponseE", typeid(held).name());
}

TEST_F(LoadedService, AcceptsARequestClassOfTheProgram) {
    MessagePtr request = std::make_unique<ProgramRequest>(false);
    const Message* const sent = request.get();
    EXPECT_EQ(sent, dispatch(std::move(request)).get().get());
}

TEST_F(LoadedService, ThrowsWhatARequestThrows) {
    expectThrows<ProgramError>("from the program",
                               [&] { dispatch(std::make_unique<ProgramRequest>(true)).get(); });
}

TEST_F(LoadedService, RefusesAMessageThatIsNotARequest) {
    Reply reply = dispatch(std::make_unique<ProgramMessage>());
    expectThrows<std::invalid_argument>(
        std::string("Incorrect message type. Expected: N9connector14ServiceMessageINS_"
                    "13configuration28ConfigurationServiceProviderEEE but found ") +
            typeid(ProgramMessage).name(),
        [&] { reply.get(); });
}

TEST_F(LoadedService, ThrowsForANullMessage) {
    EXPECT_THROW(std::ignore = dispatch(nullptr), std::bad_typeid);
}

TEST_F(LoadedService, RefusesEveryMessageAfterTheProgramStopsIt) {
    provider->stop();
    Reply reply = dispatch(std::make_unique<ProgramRequest>(false));
    expectThrows<std::runtime_error>("Service exists but is not running.", [&] { reply.get(); });
}

} // namespace
