/// Types count as the same in a program that links the library and in a plugin that links it, too.
#include "configuration/service/Messages.hpp"
#include "configuration/service/boundary/LoadedPlugin.hpp"
#include "configuration/service/boundary/Plugin.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/service/ConfigurationServiceProviderImpl.hpp>

#include <Poco/Exception.h>

#include <boost/variant/get.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace connector::configuration;
using test::expectThrows;
using test::MessagePtr;
using test::plugin;
using test::send;
using testing::ElementsAre;

std::shared_ptr<connector::ServiceProvider> makeProvider() {
    std::shared_ptr<connector::ServiceProvider> provider;
    plugin().find<test::MakeProvider>("makeProvider")(provider);
    return provider;
}

TEST(TypeInformation, LetsAServiceOfAPluginAcceptRequestsOfTheProgram) {
    const Option option = test::optionIn(send<ConfigurationGet>(*makeProvider(), "net.port"));
    EXPECT_EQ("override", option.source);
    EXPECT_EQ(80, boost::get<int>(option.value));
    EXPECT_THAT(test::keysIn(send<ConfigurationKeys>(*makeProvider())), ElementsAre("net.port"));
}

TEST(TypeInformation, LetsAServiceOfAPluginRefuseRepliesOfTheProgram) {
    auto reply = send<ConfigurationOptionResponse>(*makeProvider());
    EXPECT_THROW(reply.get(), std::invalid_argument);
}

TEST(TypeInformation, LetsTheProgramRecogniseMessagesOfAPlugin) {
    MessagePtr message;
    plugin().find<test::MakeGet>("makeGet")("net.port", message);
    EXPECT_EQ("net.port", test::as<ConfigurationGet>(message).key);
    const connector::Message& held = *message;
    EXPECT_TRUE(typeid(ConfigurationGet) == typeid(held));
}

TEST(TypeInformation, LetsTheProgramRecogniseTheProviderOfAPlugin) {
    const auto provider = makeProvider();
    EXPECT_NE(nullptr, std::dynamic_pointer_cast<ConfigurationServiceProviderImpl>(provider));
    EXPECT_NE(
        nullptr,
        std::dynamic_pointer_cast<connector::ServiceProviderAPI<ConfigurationServiceProvider>>(
            provider));
}

TEST(TypeInformation, LetsTheProgramCatchFailuresOfAService) {
    expectThrows<std::runtime_error>("Source not found or not writable: net.port, unknown", [] {
        send<ConfigurationSet>(*makeProvider(), "net.port", 81, "unknown").get();
    });
}

TEST(TypeInformation, LetsTheProgramCatchWhatAPluginThrows) {
    EXPECT_THROW(plugin().find<test::ReadNullObject>("readNullObject")(),
                 Poco::NullPointerException);
    EXPECT_THROW(plugin().find<test::ReadWrongType>("readWrongType")(), boost::bad_get);
}

} // namespace
