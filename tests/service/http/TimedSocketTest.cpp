#include "service/support/HttpClient.hpp"

#include <connector/service/http/TimedSocket.hpp>

#include <Poco/Net/ServerSocket.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>

namespace {

using connector::service::ClientTimeout;
using connector::service::Clock;
using connector::service::ConnectionLost;
using connector::service::ShutdownSignal;
using connector::service::TimedSocket;
using test::HttpClient;

constexpr auto noTime = Clock::duration::zero();
constexpr auto shortTime = std::chrono::milliseconds(1);
constexpr auto longTime = std::chrono::hours(1);

class TimedSocketTest : public testing::Test {
protected:
    TimedSocket server(Clock::duration timeout) { return TimedSocket(accepted, shutdown, timeout); }

    ShutdownSignal shutdown;
    Poco::Net::ServerSocket listening{Poco::Net::SocketAddress("127.0.0.1", 0)};
    HttpClient client{listening.address().port(), 4096};
    Poco::Net::StreamSocket accepted = listening.acceptConnection();
};

TEST_F(TimedSocketTest, ReceiveAppendsWhatTheClientSends) {
    client.send("abc");
    std::string bytes = "x";
    EXPECT_TRUE(server(longTime).receive(bytes));
    EXPECT_EQ("xabc", bytes);
}

TEST_F(TimedSocketTest, ReceiveReportsTheEndOfTheInput) {
    client.endSending();
    std::string bytes;
    EXPECT_FALSE(server(longTime).receive(bytes));
}

TEST_F(TimedSocketTest, ReceiveTimesOut) {
    std::string bytes;
    EXPECT_THROW(server(shortTime).receive(bytes), ClientTimeout);
}

TEST_F(TimedSocketTest, SendTimesOut) {
    EXPECT_THROW(server(shortTime).send(std::string(50000000, 'x')), ClientTimeout);
}

TEST_F(TimedSocketTest, SendsWithoutWaitingEvenIfNoTimeIsLeft) {
    shutdown.raise(Clock::now());
    server(noTime).send("abc\n");
    EXPECT_EQ("abc", client.readLine());
}

TEST_F(TimedSocketTest, ReceiveFirstDoesNotWaitDuringShutdown) {
    std::string bytes;
    shutdown.raise(Clock::now() + longTime);
    EXPECT_THROW(server(longTime).receiveFirst(bytes), ClientTimeout);
    client.send("abc");
    client.endSending();
    EXPECT_TRUE(server(longTime).receiveFirst(bytes));
    EXPECT_EQ("abc", bytes);
}

TEST_F(TimedSocketTest, ReportsAClosedConnection) {
    HttpClient(std::move(client));
    EXPECT_THROW(server(longTime).send(std::string(50000000, 'x')), ConnectionLost);
}

TEST_F(TimedSocketTest, ShutdownInterruptsReceive) {
    TimedSocket waiting = server(longTime);
    auto outcome = std::async(std::launch::async, [&waiting] {
        std::string bytes;
        EXPECT_THROW(waiting.receive(bytes), ClientTimeout);
    });
    shutdown.raise(Clock::now());
    outcome.get();
}

TEST_F(TimedSocketTest, ReceivesUntilTheShutdownDeadline) {
    shutdown.raise(Clock::now() + longTime);
    client.send("abc");
    std::string bytes;
    EXPECT_TRUE(server(longTime).receive(bytes));
    client.endSending();
    EXPECT_FALSE(server(longTime).receive(bytes));
}

TEST_F(TimedSocketTest, CloseGracefullyLetsTheClientReadEverythingWhileItSends) {
    TimedSocket closing = server(longTime);
    closing.send("response");
    auto reading = std::async(std::launch::async, [this] {
        client.send(std::string(1000000, 'x'));
        client.endSending();
        return client.readToEnd();
    });
    closing.closeGracefully(longTime);
    EXPECT_EQ("response", reading.get());
}

} // namespace
