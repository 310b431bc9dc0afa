#include <connector/service/network/Places.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

using boost::asio::ip::make_address;
using connector::service::Peer;
using connector::service::Places;

Peer peerAt(const std::string& remote, const std::string& local = "192.0.2.1") {
    Peer peer;
    peer.remote = make_address(remote);
    peer.local = make_address(local);
    return peer;
}

Peer unixPeer() {
    Peer peer;
    peer.isUnix = true;
    return peer;
}

/// @return how many clients like this one get a place
int admitted(Places& places, const Peer& peer, int tries = 20) {
    int count = 0;
    for (int i = 0; i < tries; ++i)
        count += places.take(peer) ? 1 : 0;
    return count;
}

TEST(Places, OneOtherMachineGetsHalf) {
    Places places(10);
    EXPECT_EQ(5, admitted(places, peerAt("192.0.2.7")));
    EXPECT_EQ(5, admitted(places, peerAt("2001:db8::7")));
    EXPECT_EQ(0, admitted(places, peerAt("192.0.2.8")));
}

TEST(Places, ThisMachineGetsAll) {
    for (const Peer& own : {unixPeer(), peerAt("127.0.0.1"), peerAt("127.8.9.1"), peerAt("::1"),
                            peerAt("::ffff:127.0.0.1"), peerAt("192.0.2.1", "192.0.2.1")}) {
        Places places(10);
        EXPECT_EQ(10, admitted(places, own)) << own.remote;
    }
}

TEST(Places, ThisMachineGetsWhatOthersLeave) {
    Places places(10);
    EXPECT_EQ(5, admitted(places, peerAt("192.0.2.7")));
    EXPECT_EQ(5, admitted(places, unixPeer()));
}

TEST(Places, AreGivenBackForTheMachineThatHadThem) {
    Places places(4);
    EXPECT_EQ(2, admitted(places, peerAt("192.0.2.7")));
    EXPECT_EQ(2, admitted(places, peerAt("192.0.2.8")));
    places.giveBack(peerAt("192.0.2.7"));
    EXPECT_EQ(0, admitted(places, peerAt("192.0.2.8"))) << "it has its half";
    EXPECT_EQ(1, admitted(places, peerAt("192.0.2.7")));
    places.giveBack(peerAt("192.0.2.7"));
    EXPECT_EQ(1, admitted(places, unixPeer()));
}

TEST(Places, AnotherMachineGetsAnOnlyPlace) {
    Places places(1);
    EXPECT_EQ(1, admitted(places, peerAt("192.0.2.7")));
    EXPECT_EQ(0, admitted(places, unixPeer()));
}

} // namespace
