/// The calls that each handler makes to the configuration, and its reply.
#include "configuration/service/Messages.hpp"
#include "configuration/service/ScriptedConfiguration.hpp"
#include "support/Expect.hpp"

#include <connector/async/Promise.hpp>
#include <connector/configuration/service/ConfigurationServiceProviderImpl.hpp>

#include <boost/variant/get.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace connector::configuration;
using connector::Address;
using connector::Context;
using connector::makeFailedFuture;
using connector::makeReadyFuture;
using connector::Message;
using test::expectThrows;
using test::MessagePtr;
using test::optionIn;
using test::Reply;
using testing::ElementsAre;
using testing::IsEmpty;

class ServiceHandlers : public testing::Test {
protected:
    /// Calls the handler directly, which works whether or not the service runs.
    template <typename Request, typename... Arguments>
    Reply handle(Arguments&&... arguments) {
        return provider->handle(std::make_unique<Request>(std::forward<Arguments>(arguments)...),
                                Address(), nullptr);
    }

    const std::shared_ptr<test::ScriptedConfiguration> configuration =
        std::make_shared<test::ScriptedConfiguration>();
    const std::shared_ptr<ConfigurationServiceProviderImpl> provider =
        std::make_shared<ConfigurationServiceProviderImpl>(configuration);
};

using GetHandler = ServiceHandlers;
using SetHandler = ServiceHandlers;
using KeysHandler = ServiceHandlers;
using AddPropertyFileSourceHandler = ServiceHandlers;

TEST_F(GetHandler, CallsHasAndThenGetOption) {
    configuration->onHas = [] { return makeReadyFuture(true); };
    configuration->onGetOption = [] { return makeReadyFuture(Option{"given", "table", 7}); };
    const Option option = optionIn(handle<ConfigurationGet>("asked"));
    EXPECT_THAT(configuration->calls, ElementsAre("has(asked)", "getOption(asked)"));
    EXPECT_EQ("given", option.key) << "as getOption returned it";
    EXPECT_EQ("table", option.source);
    EXPECT_EQ(7, boost::get<int>(option.value));
}

TEST_F(GetHandler, DoesNotCallGetOptionForAMissingOption) {
    configuration->onHas = [] { return makeReadyFuture(false); };
    const MessagePtr reply = handle<ConfigurationGet>("key").get();
    EXPECT_EQ(nullptr, test::as<ConfigurationOptionResponse>(reply).option);
    EXPECT_THAT(configuration->calls, ElementsAre("has(key)"));
}

TEST_F(GetHandler, ThrowsTheFailureOfHas) {
    configuration->onHas = [] { return makeFailedFuture<bool>(std::domain_error("no answer")); };
    expectThrows<std::domain_error>("no answer", [&] { handle<ConfigurationGet>("key").get(); });
    EXPECT_THAT(configuration->calls, ElementsAre("has(key)"));
}

/// For example, another thread removed the option between the two calls.
TEST_F(GetHandler, ThrowsTheFailureOfGetOption) {
    configuration->onHas = [] { return makeReadyFuture(true); };
    configuration->onGetOption = [] {
        return makeFailedFuture<Option>(
            std::runtime_error("No option with the specified key was found: key"));
    };
    expectThrows<std::runtime_error>("No option with the specified key was found: key",
                                     [&] { handle<ConfigurationGet>("key").get(); });
}

TEST_F(GetHandler, ThrowsWhatTheConfigurationThrows) {
    configuration->onHas = []() -> connector::Future<bool> { throw std::range_error("broken"); };
    expectThrows<std::range_error>("broken", [&] { handle<ConfigurationGet>("key").get(); });
}

TEST_F(GetHandler, WaitsForAPendingFuture) {
    connector::Promise<bool> answer;
    connector::Promise<bool> asked;
    configuration->onHas = [&] {
        asked.setValue(true);
        return answer.getFuture();
    };
    std::thread other([&, wasAsked = asked.getFuture()]() mutable {
        wasAsked.get();
        answer.setValue(false);
    });
    const MessagePtr reply = handle<ConfigurationGet>("key").get();
    other.join();
    EXPECT_EQ(nullptr, test::as<ConfigurationOptionResponse>(reply).option);
}

TEST_F(GetHandler, ReleasesTheFutures) {
    const auto state = std::make_shared<connector::detail::SharedFutureState<bool>>();
    state->setValue(false);
    configuration->onHas = [&] { return connector::Future<bool>(state); };
    const Reply reply = handle<ConfigurationGet>("key");
    EXPECT_EQ(1, state.use_count());
}

TEST_F(SetHandler, WithoutASourceRepliesWithoutASource) {
    configuration->onSet = [] { return makeReadyFuture<OptionValue>(7); };
    const Option option = optionIn(handle<ConfigurationSet>("key", 8, ""));
    EXPECT_THAT(configuration->calls, ElementsAre("set(key)"));
    EXPECT_TRUE(configuration->written == std::vector<OptionValue>{8});
    EXPECT_EQ("key", option.key);
    EXPECT_EQ("", option.source) << "even though some source took the value";
    EXPECT_EQ(7, boost::get<int>(option.value)) << "what set returned, not what was sent";
}

TEST_F(SetHandler, WithASourceRepliesWithThatSource) {
    configuration->onSet = [] { return makeReadyFuture<OptionValue>(7); };
    const Option option = optionIn(handle<ConfigurationSet>("key", 8, "table"));
    EXPECT_THAT(configuration->calls, ElementsAre("set(key, table)"));
    EXPECT_TRUE(configuration->written == std::vector<OptionValue>{8});
    EXPECT_EQ("key", option.key);
    EXPECT_EQ("table", option.source);
    EXPECT_EQ(7, boost::get<int>(option.value));
}

TEST_F(SetHandler, CopiesTheValueOutOfTheRequest) {
    configuration->onSet = [] { return makeReadyFuture<OptionValue>(7); };
    const OptionValue value = std::vector<std::string>{"a", "b"};
    auto request = std::make_unique<ConfigurationSet>("key", value, "table");
    provider->handle(std::move(request), Address(), nullptr).get();
    ASSERT_NE(nullptr, request);
    EXPECT_TRUE(value == request->value);
    EXPECT_EQ("key", request->key);
    EXPECT_EQ("table", request->source);
}

TEST_F(SetHandler, ThrowsTheFailureOfSet) {
    configuration->onSet = [] {
        return makeFailedFuture<OptionValue>(
            std::runtime_error("No writable configuration source for key: key"));
    };
    expectThrows<std::runtime_error>("No writable configuration source for key: key",
                                     [&] { handle<ConfigurationSet>("key", 8, "").get(); });
    EXPECT_THAT(configuration->calls, ElementsAre("set(key)"));
}

TEST_F(SetHandler, WithASourceThrowsTheFailureOfSet) {
    configuration->onSet = [] {
        return makeFailedFuture<OptionValue>(std::domain_error("not there"));
    };
    expectThrows<std::domain_error>("not there",
                                    [&] { handle<ConfigurationSet>("key", 8, "table").get(); });
}

TEST_F(KeysHandler, RepliesWithTheKeys) {
    configuration->onKeys = [] { return makeReadyFuture(std::set<std::string>{"b", "a"}); };
    EXPECT_THAT(test::keysIn(handle<ConfigurationKeys>()), ElementsAre("a", "b"));
    EXPECT_THAT(configuration->calls, ElementsAre("keys()"));
}

TEST_F(KeysHandler, RepliesWithAnEmptySetWhenThereAreNoKeys) {
    configuration->onKeys = [] { return makeReadyFuture(std::set<std::string>()); };
    EXPECT_THAT(test::keysIn(handle<ConfigurationKeys>()), IsEmpty());
}

TEST_F(KeysHandler, IgnoresTheReservedString) {
    configuration->onKeys = [] { return makeReadyFuture(std::set<std::string>{"a", "b"}); };
    auto request = std::make_unique<ConfigurationKeys>();
    request->reserved = "a";
    Reply reply = provider->handle(std::move(request), Address(), nullptr);
    EXPECT_THAT(test::keysIn(std::move(reply)), ElementsAre("a", "b"));
}

TEST_F(KeysHandler, ThrowsTheFailureOfKeys) {
    configuration->onKeys = [] {
        return makeFailedFuture<std::set<std::string>>(std::domain_error("unknown"));
    };
    expectThrows<std::domain_error>("unknown", [&] { handle<ConfigurationKeys>().get(); });
}

TEST_F(AddPropertyFileSourceHandler, PassesEveryField) {
    configuration->onAddPropertyFileSource = [] { return makeReadyFuture(true); };
    handle<AddPropertyFileSource>("site", "net", -3, true, u"/etc/\u00e4").get();
    handle<AddPropertyFileSource>("other", "", 2147483647, false, u"").get();
    EXPECT_THAT(configuration->calls,
                ElementsAre("addPropertyFileSource(site, net, -3, true, /etc/\u00e4)",
                            "addPropertyFileSource(other, , 2147483647, false, )"));
}

TEST_F(AddPropertyFileSourceHandler, RepliesWithABareMessage) {
    configuration->onAddPropertyFileSource = [] { return makeReadyFuture(true); };
    const MessagePtr reply = handle<AddPropertyFileSource>("site", "", 5, true, u"path").get();
    EXPECT_EQ(typeid(Message).name(), test::classOf(reply));
}

/// The reply says only that nothing was thrown. This is deliberate.
TEST_F(AddPropertyFileSourceHandler, RepliesTheSameWhenNothingWasAdded) {
    configuration->onAddPropertyFileSource = [] { return makeReadyFuture(false); };
    const MessagePtr reply = handle<AddPropertyFileSource>("site", "", 5, true, u"path").get();
    EXPECT_EQ(typeid(Message).name(), test::classOf(reply));
}

TEST_F(AddPropertyFileSourceHandler, ThrowsTheFailureOfTheRegistration) {
    configuration->onAddPropertyFileSource = [] {
        return makeFailedFuture<bool>(
            std::invalid_argument("Source with the requested name already exists: site"));
    };
    expectThrows<std::invalid_argument>("Source with the requested name already exists: site", [&] {
        handle<AddPropertyFileSource>("site", "", 5, true, u"path").get();
    });
}

TEST_F(ServiceHandlers, LeaveRequestAddressAndContextWithTheCaller) {
    configuration->onHas = [] { return makeReadyFuture(false); };
    auto request = std::make_unique<ConfigurationGet>("key");
    Address address("sender");
    auto context = std::make_shared<Context>();
    provider->handle(std::move(request), std::move(address), std::move(context)).get();
    EXPECT_NE(nullptr, request);
    EXPECT_EQ("sender", address.toString());
    ASSERT_NE(nullptr, context);
    EXPECT_EQ(1, context.use_count());
}

TEST_F(ServiceHandlers, ThrowForANullRequest) {
    const std::string text = "A handler needs a request.";
    const auto callWithNull = [&](auto request) {
        expectThrows<std::invalid_argument>(
            text, [&] { return provider->handle(std::move(request), Address(), nullptr); });
    };
    callWithNull(std::unique_ptr<ConfigurationGet>());
    callWithNull(std::unique_ptr<ConfigurationSet>());
    callWithNull(std::unique_ptr<ConfigurationKeys>());
    callWithNull(std::unique_ptr<AddPropertyFileSource>());
    EXPECT_THAT(configuration->calls, IsEmpty());
}

TEST(ConfigurationServiceProviderImpl, RequiresAConfiguration) {
    expectThrows<std::invalid_argument>("A configuration service needs a configuration.",
                                        [] { ConfigurationServiceProviderImpl{nullptr}; });
}

TEST(ConfigurationServiceProviderImpl, KeepsTheConfigurationAlive) {
    auto configuration = std::make_shared<test::ScriptedConfiguration>();
    const std::weak_ptr<Configuration> observer = configuration;
    auto provider = std::make_unique<ConfigurationServiceProviderImpl>(std::move(configuration));
    EXPECT_EQ(1, observer.use_count());
    provider.reset();
    EXPECT_TRUE(observer.expired());
}

TEST(ConfigurationServiceProviderImpl, StartsAndStopsWithoutACallOfTheConfiguration) {
    const auto configuration = std::make_shared<test::ScriptedConfiguration>();
    ConfigurationServiceProviderImpl provider(configuration);
    provider.start();
    EXPECT_TRUE(provider.isRunning());
    provider.stop();
    EXPECT_FALSE(provider.isRunning());
    EXPECT_THAT(configuration->calls, IsEmpty());
}

} // namespace
