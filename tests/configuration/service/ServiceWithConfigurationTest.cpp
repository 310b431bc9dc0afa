/// The service with a real configuration.
#include "configuration/RecordingSubscriber.hpp"
#include "configuration/service/Messages.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/service/ConfigurationServiceProviderImpl.hpp>

#include <boost/variant/get.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>
#include <tuple>

namespace {

using namespace connector::configuration;
using test::expectThrows;
using test::keysIn;
using test::MessagePtr;
using test::optionIn;
using test::send;
using testing::ElementsAre;
using testing::IsEmpty;

class ServiceWithConfiguration : public testing::Test {
protected:
    ServiceWithConfiguration() { provider->start(); }

    bool hasNoOption(const std::string& key) {
        const MessagePtr reply = send<ConfigurationGet>(*provider, key).get();
        return test::as<ConfigurationOptionResponse>(reply).option == nullptr;
    }

    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    const std::shared_ptr<ConfigurationServiceProviderImpl> provider =
        std::make_shared<ConfigurationServiceProviderImpl>(configuration);
};

/// A property file with the entry port = 80.
class PropertyFile {
public:
    PropertyFile() { std::ofstream(path) << "port = 80\n"; }
    ~PropertyFile() { std::filesystem::remove(path); }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("service-with-configuration-test-" + std::to_string(::getpid()) + ".properties");
};

TEST_F(ServiceWithConfiguration, RepliesToAGetWithTheOption) {
    configuration->addInMemorySource("table", "net", 5, true, {{"port", 80}}).get();
    const Option option = optionIn(send<ConfigurationGet>(*provider, "net.port"));
    EXPECT_EQ("net.port", option.key);
    EXPECT_EQ("table", option.source);
    EXPECT_EQ(80, boost::get<int>(option.value));
}

TEST_F(ServiceWithConfiguration, RepliesToAGetOfAMissingKeyWithoutAnOption) {
    EXPECT_TRUE(hasNoOption("net.port"));
    EXPECT_TRUE(hasNoOption(""));
}

TEST_F(ServiceWithConfiguration, RepliesToASetWithoutASourceNameEvenThoughASourceTookIt) {
    const Option option = optionIn(send<ConfigurationSet>(*provider, "port", 80, ""));
    EXPECT_EQ("port", option.key);
    EXPECT_EQ("", option.source);
    EXPECT_EQ(80, boost::get<int>(option.value));
    EXPECT_EQ("override", configuration->getOption("port").get().source);
}

TEST_F(ServiceWithConfiguration, RepliesToASecondSetWithThePreviousValue) {
    send<ConfigurationSet>(*provider, "port", 80, "").get();
    const Option option = optionIn(send<ConfigurationSet>(*provider, "port", 81, ""));
    EXPECT_EQ(80, boost::get<int>(option.value));
    EXPECT_EQ(81, boost::get<int>(configuration->get("port").get()));
}

TEST_F(ServiceWithConfiguration, SetsInTheNamedSource) {
    const Option option = optionIn(send<ConfigurationSet>(*provider, "port", 80, "default"));
    EXPECT_EQ("default", option.source);
    EXPECT_EQ("default", configuration->getOption("port").get().source);
}

TEST_F(ServiceWithConfiguration, NotifiesSubscribersOfASet) {
    const auto subscriber = test::watch(*configuration, "port");
    send<ConfigurationSet>(*provider, "port", 80, "").get();
    EXPECT_THAT(subscriber->values(), ElementsAre(80));
}

TEST_F(ServiceWithConfiguration, ThrowsForASetWithoutAWritableSource) {
    configuration->removeSource("override").get();
    configuration->removeSource("default").get();
    expectThrows<std::runtime_error>("No writable configuration source for key: port", [&] {
        send<ConfigurationSet>(*provider, "port", 80, "").get();
    });
}

TEST_F(ServiceWithConfiguration, ThrowsForASetInAReadOnlySource) {
    configuration->addInMemorySource("table", "", 5, true, {}).get();
    expectThrows<std::runtime_error>("Source not found or not writable: port, table", [&] {
        send<ConfigurationSet>(*provider, "port", 80, "table").get();
    });
}

TEST_F(ServiceWithConfiguration, ListsTheKeys) {
    configuration->set("b", 1).get();
    configuration->addInMemorySource("table", "net", 5, true, {{"port", 80}}).get();
    configuration->set("a", 1, "default").get();
    EXPECT_THAT(keysIn(send<ConfigurationKeys>(*provider)), ElementsAre("a", "b", "net.port"));
}

TEST_F(ServiceWithConfiguration, ListsNoKeysWhenThereAreNone) {
    EXPECT_THAT(keysIn(send<ConfigurationKeys>(*provider)), IsEmpty());
}

TEST_F(ServiceWithConfiguration, AddsAPropertyFile) {
    const PropertyFile file;
    const MessagePtr reply =
        send<AddPropertyFileSource>(*provider, "file", "net", 5, true, file.path.u16string()).get();
    EXPECT_EQ(typeid(connector::Message).name(), test::classOf(reply));
    const Option option = optionIn(send<ConfigurationGet>(*provider, "net.port"));
    EXPECT_EQ("file", option.source);
    EXPECT_EQ("80", boost::get<std::string>(option.value));
    const auto answer = configuration->explain("net.port")[1];
    EXPECT_EQ(5, answer.order);
    EXPECT_TRUE(answer.readOnly);
}

TEST_F(ServiceWithConfiguration, ThrowsForAFileThatCannotBeOpened) {
    expectThrows<std::runtime_error>(
        "Property file could not be opened: /no-such-directory/a.properties", [&] {
            send<AddPropertyFileSource>(*provider, "file", "", 5, true,
                                        u"/no-such-directory/a.properties")
                .get();
        });
}

TEST_F(ServiceWithConfiguration, ThrowsForASourceNameThatIsTaken) {
    const PropertyFile file;
    expectThrows<std::invalid_argument>(
        "Source with the requested name already exists: default", [&] {
            send<AddPropertyFileSource>(*provider, "default", "", 5, true, file.path.u16string())
                .get();
        });
}

TEST_F(ServiceWithConfiguration, WorksAfterAFailure) {
    EXPECT_ANY_THROW(std::ignore = send<ConfigurationSet>(*provider, "port", 80, "unknown"));
    EXPECT_TRUE(hasNoOption("port"));
}

TEST_F(ServiceWithConfiguration, DoesNotCallTheConfigurationWhileNotRunning) {
    provider->stop();
    std::ignore = send<ConfigurationSet>(*provider, "port", 80, "");
    EXPECT_FALSE(configuration->has("port").get());
}

TEST_F(ServiceWithConfiguration, ServesSeveralThreads) {
    constexpr int threads = 4;
    constexpr int rounds = 50;
    std::vector<std::thread> senders;
    for (int i = 0; i < threads; ++i)
        senders.emplace_back([&, key = "key" + std::to_string(i)] {
            for (int round = 0; round < rounds; ++round) {
                send<ConfigurationSet>(*provider, key, round, "").get();
                const Option option = optionIn(send<ConfigurationGet>(*provider, key));
                EXPECT_EQ(round, boost::get<int>(option.value));
            }
        });
    for (std::thread& sender : senders)
        sender.join();
    EXPECT_THAT(keysIn(send<ConfigurationKeys>(*provider)),
                ElementsAre("key0", "key1", "key2", "key3"));
}

} // namespace
