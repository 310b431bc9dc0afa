/// The server's end of a connection.
#include "service/support/HttpClient.hpp"
#include <connector/service/http/Wire.hpp>

#include <Poco/Net/ServerSocket.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>

namespace {

using connector::service::ClientLate;
using connector::service::ClientLost;
using connector::service::Clock;
using connector::service::Ending;
using connector::service::Wire;
using test::HttpClient;

constexpr auto moment = std::chrono::milliseconds(20);
constexpr auto forever = std::chrono::hours(1);

class WireTest : public testing::Test {
protected:
    Wire wire(Clock::duration patience) { return Wire(accepted, ending, patience); }

    Ending ending;
    Poco::Net::ServerSocket listening{Poco::Net::SocketAddress("127.0.0.1", 0)};
    HttpClient client{listening.address().port(), 4096};
    Poco::Net::StreamSocket accepted = listening.acceptConnection();
};

TEST_F(WireTest, WhatTheClientSends_Comes) {
    client.send("abc");
    std::string bytes = "x";
    EXPECT_TRUE(wire(forever).receive(bytes));
    EXPECT_EQ("xabc", bytes);
}

TEST_F(WireTest, TheEndOfWhatTheClientSends_IsToldAsTheEnd) {
    client.endSending();
    std::string bytes;
    EXPECT_FALSE(wire(forever).receive(bytes));
}

TEST_F(WireTest, AClientThatSendsNothing_IsLate) {
    std::string bytes;
    EXPECT_THROW(wire(moment).receive(bytes), ClientLate);
}

TEST_F(WireTest, AClientThatReadsNothing_IsLate) {
    EXPECT_THROW(wire(moment).send(std::string(50000000, 'x')), ClientLate);
}

TEST_F(WireTest, WhatTheClientTakesAtOnce_IsSentWithoutAnyTimeLeft) {
    ending.announce(Clock::now());
    wire(Clock::duration::zero()).send("abc\n");
    EXPECT_EQ("abc", client.readLine());
}

TEST_F(WireTest, AClientThatHasSaidNothing_IsLateAtTheEnd) {
    std::string bytes;
    ending.announce(Clock::now() + forever);
    EXPECT_THROW(wire(forever).receiveFirst(bytes), ClientLate);
    client.send("abc");
    client.endSending();
    EXPECT_TRUE(wire(forever).receiveFirst(bytes));
    EXPECT_EQ("abc", bytes);
}

TEST_F(WireTest, AClientThatHasGone_IsLost) {
    HttpClient(std::move(client));
    EXPECT_THROW(wire(forever).send(std::string(50000000, 'x')), ClientLost);
}

TEST_F(WireTest, TheEnd_EndsTheWaiting) {
    Wire waiting = wire(forever);
    auto outcome = std::async(std::launch::async, [&waiting] {
        std::string bytes;
        EXPECT_THROW(waiting.receive(bytes), ClientLate);
    });
    ending.announce(Clock::now());
    outcome.get();
}

TEST_F(WireTest, UntilTheEndIsThere_TheClientIsHeard) {
    ending.announce(Clock::now() + forever);
    client.send("abc");
    std::string bytes;
    EXPECT_TRUE(wire(forever).receive(bytes));
    client.endSending();
    EXPECT_FALSE(wire(forever).receive(bytes));
}

TEST_F(WireTest, HangingUp_LetsTheClientReadToTheEndWhateverItSends) {
    Wire ours = wire(forever);
    ours.send("answer");
    auto reading = std::async(std::launch::async, [this] {
        client.send(std::string(1000000, 'x'));
        client.endSending();
        return client.readToTheEnd();
    });
    ours.hangUp(forever);
    EXPECT_EQ("answer", reading.get());
}

} // namespace
