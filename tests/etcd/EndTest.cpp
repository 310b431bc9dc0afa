// The end of a source, whatever the network and the watchers do.
#include "Fixture.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <filesystem>
#include <fstream>
#include <future>

namespace {

using namespace test;
using connector::configuration::ConfigurationImpl;

std::string threadNameOf(const std::filesystem::path& task) {
    std::string name;
    std::getline(std::ifstream(task / "comm"), name);
    return name;
}

/// @return how many threads of sources there are in this process
int threadsOfSources() {
    int count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        const std::string name = threadNameOf(task.path());
        count += name == "etcd-network" || name == "etcd-telling";
    }
    return count;
}

/// Destroys a source.
/// @return whether that took less than a second
template <typename Source>
bool endsWithinASecond(Source& source) {
    const auto begin = std::chrono::steady_clock::now();
    source.reset();
    return std::chrono::steady_clock::now() - begin < 1s;
}

class EndTest : public testing::Test {
protected:
    ~EndTest() override {
        EXPECT_TRUE(eventually([] { return threadsOfSources() == 0; }));
    }

    EtcdServer server;
    Client client{server.endpoint()};
};

TEST_F(EndTest, LeavesNoThread) {
    EXPECT_TRUE(oneOfThree([&] {
        auto source = sourceOf(server.endpoint());
        EXPECT_EQ(2, threadsOfSources());
        const bool isInTime = endsWithinASecond(source);
        // The system may list a thread for a moment after it was joined.
        EXPECT_TRUE(eventually([] { return threadsOfSources() == 0; }));
        return isInTime;
    }));
}

TEST_F(EndTest, ItsThreadsTakeNoSignals) {
    const auto source = sourceOf(server.endpoint());
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        if (threadNameOf(task.path()).compare(0, 5, "etcd-") != 0)
            continue; // one of gRPC's, which come and go
        std::string line;
        std::ifstream status(task.path() / "status");
        while (std::getline(status, line) && line.compare(0, 7, "SigBlk:") != 0) {
        }
        const bool takesTermination = (std::stoull(line.substr(7), nullptr, 16) >> 14 & 1) == 0;
        EXPECT_FALSE(takesTermination) << line;
    }
}

TEST_F(EndTest, DoesNotWaitForAFrozenServer) {
    EXPECT_TRUE(oneOfThree([&] {
        server.thaw();
        auto source = sourceOf(server.endpoint());
        server.freeze();
        auto write = source->put("a", "unknown");
        const bool isInTime = endsWithinASecond(source);
        EXPECT_THROW(write.get(), std::runtime_error);
        return isInTime;
    }));
}

TEST_F(EndTest, DoesNotWaitForAConnection) {
    Proxy proxy(server.port());
    proxy.drop();
    Options options = optionsFor({proxy.endpoint()});
    options.startup = Startup::Empty();
    EXPECT_TRUE(oneOfThree([&] {
        auto source = std::make_shared<EtcdSource>(options);
        return endsWithinASecond(source);
    }));
}

TEST_F(EndTest, DoesNotWaitForAWatcherForEver) {
    int value = 0;
    EXPECT_TRUE(oneOfThree([&] {
        auto source = sourceOf(server.endpoint());
        auto entered = std::make_shared<std::promise<void>>();
        auto released = std::make_shared<std::promise<void>>();
        source->setWatcher([entered, released](const std::string&) {
            entered->set_value();
            released->get_future().wait();
        });
        client.put(prefix + "a", std::to_string(++value)); // a change each time
        entered->get_future().wait();
        const bool isInTime = endsWithinASecond(source);
        released->set_value();
        return isInTime;
    }));
}

TEST_F(EndTest, MayComeWhileTheLockOfAConfigurationIsHeld) {
    const auto configuration = std::make_shared<ConfigurationImpl>();
    auto source = sourceOf(server.endpoint());
    configuration->addSource("fleet", "", 60, true, source).get();
    const std::weak_ptr<EtcdSource> observed = source;
    source.reset();
    for (int i = 0; i < 20; ++i)
        client.put(prefix + "a", std::to_string(i));
    EXPECT_TRUE(configuration->removeSource("fleet").get());
    EXPECT_TRUE(observed.expired());
}

TEST_F(EndTest, MayComeFromTheWatcher) {
    auto source = std::make_shared<std::shared_ptr<EtcdSource>>(sourceOf(server.endpoint()));
    auto ended = std::make_shared<std::promise<void>>();
    (*source)->setWatcher([source, ended](const std::string&) {
        const auto kept = source; // the next line destroys the captures
        const auto keptEnd = ended;
        kept->reset();
        keptEnd->set_value();
    });
    client.put(prefix + "a", "1");
    ended->get_future().wait();
}

TEST_F(EndTest, MayComeFromAContinuation) {
    auto source = std::make_shared<std::shared_ptr<EtcdSource>>(sourceOf(server.endpoint()));
    std::promise<void> ended;
    (*source)->put("a", "1").then([&](connector::Future<std::int64_t>&) {
        source->reset();
        ended.set_value();
    });
    ended.get_future().wait();
}

} // namespace
