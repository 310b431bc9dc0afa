// Engines that say nothing, or nonsense.
#include "Load.hpp"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

namespace {

using namespace test;

TEST(SilenceTest, OfAFrozenServerIsKnownWithin4Seconds) {
    Moments moments;
    EtcdServer server;
    Writer writer(server.endpoint());
    const auto source = std::make_shared<EtcdSource>(optionsFor({server.endpoint()}));
    Reader reader(*source);
    ASSERT_TRUE(writer.writesMore(1 + moments.below(40)));
    EXPECT_TRUE(oneOfThree([&] {
        server.thaw();
        EXPECT_TRUE(becomesCurrent(*source));
        return isStaleInTime(*source, [&] { server.freeze(); });
    }));
    Observer observer(*source);
    // It is frozen for 20 s in all, and the last values stay.
    const auto before = textsOf(*source);
    EXPECT_FALSE(observer.waitFor(State::Current, 16s));
    EXPECT_EQ(before, textsOf(*source));
    server.thaw();
    EXPECT_TRUE(observer.waitFor(State::Current));
    ASSERT_TRUE(writer.writesMore(5));
    writer.stop();
    Client client(server.endpoint());
    EXPECT_TRUE(agrees(*source, client));
    EXPECT_EQ("", reader.wrong());
    EXPECT_EQ(1u, source->status().lists);
}

TEST(SilenceTest, OfAVanishedMachineIsKnownWithin4Seconds) {
    EtcdServer server;
    Proxy proxy(server.port());
    const auto source = sourceOf(proxy.endpoint());
    EXPECT_TRUE(oneOfThree([&] {
        proxy.pass();
        EXPECT_TRUE(becomesCurrent(*source));
        return isStaleInTime(*source, [&] { proxy.drop(); });
    }));
    proxy.pass();
    EXPECT_TRUE(becomesCurrent(*source));
}

TEST(SilenceTest, AQuietEngineIsNotStale) {
    EtcdServer server;
    EXPECT_TRUE(oneOfThree([&] {
        const auto source = sourceOf(server.endpoint());
        Observer observer(*source);
        return !observer.waitFor(State::Stale, 6s) && source->status().watches == 1;
    }));
}

TEST(SilenceTest, AnotherEndpointIsTaken) {
    EtcdServer server;
    Proxy proxy(server.port());
    Proxy other(server.port());
    const auto source =
        std::make_shared<EtcdSource>(optionsFor({proxy.endpoint(), other.endpoint()}));
    Client client(server.endpoint());
    for (Proxy* const lost : {&proxy, &other}) {
        Observer observer(*source);
        ASSERT_TRUE(observer.waitFor(State::Current));
        proxy.pass();
        other.pass();
        lost->drop();
        client.put(prefix + "a", lost->endpoint());
        EXPECT_TRUE(agrees(*source, client));
    }
}

/// Answers every connection with the same bytes.
class Nonsense {
public:
    explicit Nonsense(const std::string& answer)
        : listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        socklen_t size = sizeof address;
        EXPECT_EQ(0, ::bind(listener, generic, size));
        EXPECT_EQ(0, ::listen(listener, 8));
        EXPECT_EQ(0, ::getsockname(listener, generic, &size));
        port = ntohs(address.sin_port);
        thread = std::thread([this, answer] {
            int client = -1;
            while ((client = ::accept(listener, nullptr, nullptr)) >= 0) {
                [[maybe_unused]] const ssize_t sent =
                    ::send(client, answer.data(), answer.size(), MSG_NOSIGNAL);
                ::close(client);
            }
        });
    }
    ~Nonsense() {
        ::shutdown(listener, SHUT_RDWR);
        thread.join();
        ::close(listener);
    }
    Nonsense(const Nonsense&) = delete;
    Nonsense& operator=(const Nonsense&) = delete;

    std::string endpoint() const { return "http://127.0.0.1:" + std::to_string(port); }

private:
    const int listener;
    int port = 0;
    std::thread thread;
};

TEST(SilenceTest, NonsenseIsAFailure) {
    for (const std::string& answer :
         {std::string("HTTP/1.1 200 OK\r\n\r\nhello"), std::string(10'000, '\0'), std::string()}) {
        const Nonsense server(answer);
        Options options = optionsFor({server.endpoint()});
        options.startup = Startup::Empty();
        EtcdSource source(options);
        Observer observer(source);
        EXPECT_TRUE(observer.waitUntil([&](const Status& status) {
            return status.state == State::Stale &&
                   status.failure.find(server.endpoint()) != std::string::npos;
        }));
    }
}

} // namespace
