#include "Net.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/typed/LiveSettings.hpp>

#include <atomic>
#include <chrono>
#include <iostream>
#include <optional>
#include <random>
#include <thread>

namespace {

using namespace std::string_literals;
using namespace connector::configuration;
using test::Net;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LiveSettingsTest : public ::testing::Test {
protected:
    LiveSettingsTest() { set("net.peers", "a"s); }

    void set(const std::string& key, OptionValue value) { configuration->set(key, value).get(); }

    OptionWatch watch(const LiveSettings<Net>& live) {
        return live.onChange([this](const Net& net) { told.push_back(net.port); });
    }

    const OptionSchema<Net> schema = test::netSchema();
    std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
    std::vector<int> told;
};

TEST_F(LiveSettingsTest, FollowEveryDeclaredOption) {
    const LiveSettings<Net> live(configuration, schema);
    const auto before = live.snapshot();
    set("net.port", 1234);
    set("net.limits.count", "20"s);
    EXPECT_EQ(8080, before->port);
    EXPECT_EQ(1234, live.snapshot()->port);
    EXPECT_EQ(20, live.snapshot()->limits.count);
    EXPECT_THAT(live.problems(), IsEmpty());
}

TEST_F(LiveSettingsTest, MustBeGoodAtFirst) {
    set("net.port", 0);
    test::expectThrows<InvalidSettings>("net.port from override: must be between 1 and 65535: 0",
                                        [this] { LiveSettings<Net>(configuration, schema); });
    test::expectThrows<std::invalid_argument>("A null configuration cannot be followed.",
                                              [this] { LiveSettings<Net>(nullptr, schema); });
}

TEST_F(LiveSettingsTest, KeepTheLastGoodOnesAllOrNothing) {
    const LiveSettings<Net> live(configuration, schema);
    set("net.port", 80);
    set("net.mode", "secure"s); // breaks the rule
    set("net.host", "elsewhere"s);
    EXPECT_EQ(80, live.snapshot()->port);
    EXPECT_EQ(test::Mode::Plain, live.snapshot()->mode);
    EXPECT_EQ("localhost", live.snapshot()->host);
    EXPECT_THAT(live.problems(), ElementsAre(OptionProblem{"net", "", "secure wants high ports"}));
    set("net.port", 8443);
    EXPECT_EQ(test::Mode::Secure, live.snapshot()->mode);
    EXPECT_EQ("elsewhere", live.snapshot()->host);
    EXPECT_THAT(live.problems(), IsEmpty());
}

TEST_F(LiveSettingsTest, TellHandlersAtOnceAndWhenOthersAreTaken) {
    const LiveSettings<Net> live(configuration, schema);
    const OptionWatch watching = watch(live);
    set("net.port", 1);
    set("net.port", "1"s); // the same
    set("net.port", 0);    // bad
    set("net.port", 2);
    EXPECT_THAT(told, ElementsAre(8080, 1, 2));
}

TEST_F(LiveSettingsTest, HandlersChangeOptionsEndAndThrow) {
    const LiveSettings<Net> live(configuration, schema);
    std::optional<OptionWatch> own;
    own = live.onChange([&](const Net& net) {
        if (net.port == 3)
            own.reset();
        else if (net.port < 3)
            set("net.port", net.port + 1);
    });
    const OptionWatch watching = watch(live);
    ::testing::internal::CaptureStderr();
    const OptionWatch failing =
        live.onChange([](const Net&) { throw std::runtime_error("handler"); });
    EXPECT_EQ("Error in configuration value subscriber: net\n",
              ::testing::internal::GetCapturedStderr());
    ::testing::internal::CaptureStderr();
    set("net.port", 1);
    EXPECT_EQ(3, live.snapshot()->port);
    EXPECT_EQ(3, told.back());
    set("net.port", 1);
    EXPECT_EQ(1, live.snapshot()->port);
    ::testing::internal::GetCapturedStderr(); // of the failing one
    test::expectThrows<std::invalid_argument>("An empty handler cannot be called.", [&live] {
        static_cast<void>(live.onChange(nullptr));
    });
}

TEST_F(LiveSettingsTest, OutliveTheConfigurationAndAreOutlivedByTheirWatches) {
    OptionWatch watching;
    {
        const LiveSettings<Net> live(configuration, schema);
        const LiveSettings<Net> copy = live;
        watching = watch(copy);
    }
    set("net.port", 1);
    EXPECT_THAT(told, ElementsAre(8080, 1));
    const LiveSettings<Net> live(configuration, schema);
    const std::weak_ptr<Configuration> alive = configuration;
    configuration.reset();
    EXPECT_TRUE(alive.expired());
    EXPECT_EQ(1, live.snapshot()->port);
}

#if defined(__SANITIZE_THREAD__)
constexpr std::chrono::seconds duration{15};
#else
constexpr std::chrono::seconds duration{1};
#endif

TEST_F(LiveSettingsTest, ConvergeWhateverThreadsDo) {
    const auto seed = std::random_device()();
    std::cout << "seed " << seed << std::endl;
    const auto end = std::chrono::steady_clock::now() + duration;
    const LiveSettings<Net> live(configuration, schema);
    std::atomic<int> calls{0}, lastPort{0}, lastCount{0};
    const OptionWatch watching = live.onChange([&](const Net& net) {
        EXPECT_EQ(1, ++calls) << "calls overlap";
        lastPort = net.port;
        lastCount = net.limits.count;
        if (net.port % 16 == 1)
            set("net.limits.count", 30);
        --calls;
    });
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < 3; ++i)
        threads.emplace_back([&, own = std::mt19937_64(seed + i)]() mutable {
            while (std::chrono::steady_clock::now() < end) {
                set("net.port", static_cast<int>(own() % 2000)); // 0 is refused
                set("net.limits.count", static_cast<int>(own() % 3 + 1) * 10);
                const OptionWatch brief =
                    live.onChange([](const Net& net) { EXPECT_NE(0, net.port); });
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    set("net.port", 4242);
    const Net now = schema.read(*configuration);
    EXPECT_EQ(now.port, live.snapshot()->port);
    EXPECT_EQ(now.port, lastPort);
    EXPECT_EQ(now.limits.count, lastCount);
}

} // namespace
