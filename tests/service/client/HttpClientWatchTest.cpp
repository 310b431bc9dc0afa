/// Following the options of a service.
#include "service/client/ScriptedServer.hpp"
#include "service/client/ServedConfiguration.hpp"

#include <gmock/gmock.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace {

using connector::configuration::Option;
using connector::configuration::OptionValue;
using connector::service::HttpClient;
using connector::service::HttpClientOptions;
using connector::service::ServiceError;
using connector::service::WatchedOptions;
using test::errorOf;
using test::ScriptedServer;
using testing::HasSubstr;
using testing::Not;

/// What one thread hands to another.
template <typename Element>
class Channel {
public:
    void put(const Element& element) {
        const std::lock_guard<std::mutex> lock(mutex);
        elements.push_back(element);
        added.notify_one();
    }
    Element take() {
        std::unique_lock<std::mutex> lock(mutex);
        added.wait(lock, [this] { return !elements.empty(); });
        const Element element = elements.front();
        elements.pop_front();
        return element;
    }

private:
    std::mutex mutex;
    std::condition_variable added;
    std::deque<Element> elements;
};

/// Watches on a thread of its own.
class Watch {
public:
    Watch(const HttpClientOptions& options, const WatchedOptions& watched)
        : client(options), thread([this, watched] {
              client.watch(
                  watched, [this](const Option& option) { values.put(option); },
                  [this](const ServiceError& error) { losses.put(error.what()); });
          }) {}
    ~Watch() {
        client.stopWatching();
        thread.join();
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    Channel<Option> values;
    Channel<std::string> losses;

private:
    HttpClient client;
    std::thread thread; // last, because it uses the other members
};

using HttpClientWatch = test::ServedConfiguration;

TEST_F(HttpClientWatch, ReportsValuesAndChanges) {
    configuration->set("net.port", 1).get();
    configuration->set("db.password", std::string("hush")).get();
    start();
    Watch keys(clientOptions(), {{"net.port"}, {}});
    Watch prefixes(clientOptions(), {{}, {"db."}});
    EXPECT_TRUE(OptionValue(1) == keys.values.take().value);
    EXPECT_TRUE(OptionValue(std::string("******")) == prefixes.values.take().value);
    configuration->set("net.port", 2).get();
    configuration->set("db.new", 3).get();
    const Option changed = keys.values.take();
    EXPECT_EQ("net.port", changed.key);
    EXPECT_EQ("override", changed.source);
    EXPECT_TRUE(OptionValue(2) == changed.value);
    EXPECT_EQ("db.new", prefixes.values.take().key);
}

TEST_F(HttpClientWatch, GoesOnAfterARestart) {
    configuration->set("net.port", 1).get();
    start();
    Watch watch(clientOptions(), {{"net.port"}, {}});
    EXPECT_TRUE(OptionValue(1) == watch.values.take().value);
    stop();
    EXPECT_THAT(watch.losses.take(), HasSubstr("was closed"));
    EXPECT_THAT(watch.losses.take(), HasSubstr("Cannot connect to "));
    configuration->set("net.port", 2).get();
    start();
    EXPECT_TRUE(OptionValue(2) == watch.values.take().value);
    configuration->set("net.port", 3).get();
    EXPECT_TRUE(OptionValue(3) == watch.values.take().value);
}

TEST_F(HttpClientWatch, EndsWhenItIsStopped) {
    configuration->set("net.port", 1).get();
    start();
    HttpClient client(clientOptions());
    int calls = 0;
    client.watch({{"net.port"}, {}}, [&](const Option&) {
        ++calls;
        EXPECT_TRUE(client.get("net.port")); // handlers may use the client
        client.stopWatching();
    });
    EXPECT_EQ(1, calls);
    client.watch({{"net.port"}, {}}, [&](const Option&) { ++calls; });
    EXPECT_EQ(1, calls);
}

TEST_F(HttpClientWatch, EndsWhileItWaitsToReconnect) {
    configuration->set("net.port", 1).get();
    start();
    HttpClientOptions slow = clientOptions();
    slow.minRetry = slow.maxRetry = std::chrono::hours(1);
    Watch watch(slow, {{"net.port"}, {}});
    watch.values.take();
    stop();
    watch.losses.take();
}

TEST_F(HttpClientWatch, FailsIfTheServiceCannotBeReachedAtFirst) {
    start();
    HttpClient client(clientOptions());
    stop();
    EXPECT_THAT(errorOf([&] {
                    client.watch({{"a"}, {}}, [](const Option&) {});
                }).what(),
                HasSubstr("Cannot connect to "));
}

TEST_F(HttpClientWatch, FailsIfTheServiceRefuses) {
    options.tokenFile = directory.write("token", "s3cret").string();
    start();
    HttpClient client(clientOptions());
    const auto error = errorOf([&] { client.watch({{"a"}, {}}, [](const Option&) {}); });
    EXPECT_EQ(401u, error.status()) << error.what();
}

TEST_F(HttpClientWatch, PassesOnWhatTheHandlerThrows) {
    configuration->set("net.port", 1).get();
    start();
    HttpClient client(clientOptions());
    EXPECT_THROW(
        client.watch({{"net.port"}, {}}, [](const Option&) { throw std::domain_error("handler"); }),
        std::domain_error);
    EXPECT_STREQ(
        "handler",
        errorOf([&] {
            client.watch({{"net.port"}, {}}, [](const Option&) { throw ServiceError("handler"); });
        }).what());
}

constexpr char streamHead[] = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n\r\n";
constexpr char event[] = "data: {\"key\":\"a\",\"source\":\"s\","
                         "\"value\":{\"type\":\"int\",\"value\":1}}\n\n";

TEST(HttpClientWatchOfScript, TellsWhatItHasSeen) {
    ScriptedServer server([](ScriptedServer& self) {
        {
            ScriptedServer::Client client = self.accept();
            EXPECT_THAT(client.readRequest(), Not(HasSubstr("Last-Event-ID")));
            client.send(streamHead + std::string("id: x-7\n") + event);
        }
        {
            ScriptedServer::Client client = self.accept();
            EXPECT_THAT(client.readRequest(), HasSubstr("Last-Event-ID: x-7\r\n"));
            client.respond("", "503 Service Unavailable");
        }
        ScriptedServer::Client client = self.accept();
        EXPECT_THAT(client.readRequest(), HasSubstr("Last-Event-ID: x-7\r\n"));
        client.send(streamHead + std::string(": comment\n\nid: x-9\nevent: end\ndata: {}\n\n") +
                    event);
        EXPECT_EQ("", client.readRequest()); // until the watch ends
    });
    HttpClientOptions options;
    options.url = server.url();
    options.minRetry = options.maxRetry = std::chrono::milliseconds(1);
    Watch watch(options, {{"a"}, {}});
    EXPECT_EQ("a", watch.values.take().key);
    EXPECT_EQ("a", watch.values.take().key);
    EXPECT_THAT(watch.losses.take(), HasSubstr("was closed"));
    EXPECT_THAT(watch.losses.take(), HasSubstr("503 Service Unavailable"));
}

TEST(HttpClientWatchOfScript, DoesNotReadAnEndlessRefusal) {
    ScriptedServer server([](ScriptedServer& self) {
        ScriptedServer::Client client = self.accept();
        client.readRequest();
        client.send("HTTP/1.1 500 Broken\r\n\r\n");
        client.send(std::string(4 * 1024 * 1024, 'x'));
        EXPECT_EQ("", client.readRequest()); // until the client has enough
    });
    HttpClientOptions options;
    options.url = server.url();
    HttpClient client(options);
    const auto error = errorOf([&] { client.watch({{"a"}, {}}, [](const Option&) {}); });
    EXPECT_EQ("Response of " + server.url() + ": 500 Broken", error.what());
    EXPECT_EQ(500u, error.status());
}

TEST(HttpClientWatchOfScript, GivesUpARefusalThatTakesTooLong) {
    constexpr int length = 100;
    ScriptedServer server([](ScriptedServer& self) {
        ScriptedServer::Client client = self.accept();
        client.readRequest();
        client.send("HTTP/1.1 500 Broken\r\nContent-Length: " + std::to_string(length) +
                    "\r\n\r\n");
        for (int i = 0; i < length; ++i) {
            client.send("x");
            std::this_thread::sleep_for(std::chrono::milliseconds(10)); // the service is slow
        }
    });
    HttpClientOptions options;
    options.url = server.url();
    options.request = std::chrono::milliseconds(200);
    HttpClient client(options);
    EXPECT_EQ("No response from " + server.url() + ": Connection timed out",
              errorOf([&] {
                  client.watch({{"a"}, {}}, [](const Option&) {});
              }).what());
}

TEST(HttpClientWatchOfScript, GivesUpASilentService) {
    ScriptedServer server([](ScriptedServer& self) {
        for (int i = 0; i < 2; ++i) {
            ScriptedServer::Client client = self.accept();
            client.readRequest();
            client.send(streamHead);
            if (i > 0)
                client.send(event);
            EXPECT_EQ("", client.readRequest());
        }
    });
    HttpClientOptions options;
    options.url = server.url();
    options.minRetry = options.maxRetry = std::chrono::milliseconds(1);
    options.silence = std::chrono::milliseconds(300);
    HttpClient client(options);
    std::vector<std::string> losses;
    client.watch(
        {{"a"}, {}}, [&](const Option&) { client.stopWatching(); },
        [&](const ServiceError& error) { losses.emplace_back(error.what()); });
    EXPECT_EQ(
        std::vector<std::string>{"No response from " + server.url() + ": Connection timed out"},
        losses);
}

} // namespace
