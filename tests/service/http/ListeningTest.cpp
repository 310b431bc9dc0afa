/// The addresses that the server listens on, and the host names that it accepts.
#include "service/support/HttpClient.hpp"
#include "service/support/InProcessServer.hpp"
#include "service/support/ServerProcess.hpp"
#include "support/Expect.hpp"

#include <Poco/Exception.h>
#include <Poco/Net/ServerSocket.h>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <system_error>

#include <fcntl.h>

namespace {

using test::get;
using test::HttpClient;
using test::InProcessServer;
using test::ServerProcess;

bool hasIpv6() {
    try {
        const Poco::Net::ServerSocket socket(Poco::Net::SocketAddress("::1", 0));
        return true;
    } catch (const Poco::Exception&) {
        return false;
    }
}

/// @return the status for a client that connects to an address and sends this host name
int statusFor(const ServerProcess& server, const std::string& address, const std::string& name) {
    HttpClient client(address, server.port());
    client.send("GET /options HTTP/1.1\r\nHost: " + name + ":" + std::to_string(server.port()) +
                "\r\n\r\n");
    return client.response().status;
}

void expectRefusal(const ServerProcess& server, const std::string& address) {
    try {
        const HttpClient client(address, server.port());
        ADD_FAILURE() << "A connection is accepted on " << address;
    } catch (const std::system_error& error) {
        EXPECT_EQ(std::errc::connection_refused, error.code()) << error.what();
    }
}

TEST(Listening, StartsOnce) {
    InProcessServer server; // has started
    server.service.start();
    EXPECT_EQ(200, get(server.port(), "/options").status);
}

TEST(Listening, NeedsAConfiguration) {
    test::expectThrows<std::invalid_argument>("A null configuration cannot be served.", [] {
        connector::service::HttpService(nullptr, connector::service::HttpOptions());
    });
}

TEST(Listening, WithoutAHostIsOnTheLoopbackAddressOnly) {
    for (const char* address : {":0", "0"}) {
        SCOPED_TRACE(address);
        const ServerProcess server({}, {}, address);
        EXPECT_EQ("127.0.0.1", server.host());
        EXPECT_EQ(200, statusFor(server, "127.0.0.1", "127.0.0.1"));
        EXPECT_EQ(200, statusFor(server, "127.0.0.1", "localhost"));
        expectRefusal(server, "127.0.0.2"); // another loopback address
        if (hasIpv6())
            expectRefusal(server, "::1");
    }
}

TEST(Listening, OnAllAddressesIsReachableByEachOfThem) {
    const ServerProcess server({}, {}, "0.0.0.0:0");
    EXPECT_EQ("0.0.0.0", server.host());
    EXPECT_EQ(200, statusFor(server, "127.0.0.1", "127.0.0.1"));
    EXPECT_EQ(200, statusFor(server, "127.0.0.2", "127.0.0.2"));
    EXPECT_EQ(200, statusFor(server, "127.0.0.2", "localhost"));
    EXPECT_EQ(403, statusFor(server, "127.0.0.2", "127.0.0.1"));
}

TEST(Listening, OnANameIsReachableByThatName) {
    const ServerProcess server({}, {}, "localhost:0");
    const std::string address = server.host() == "[::1]" ? "::1" : "127.0.0.1";
    EXPECT_EQ(200, statusFor(server, address, "localhost"));
    EXPECT_EQ(200, statusFor(server, address, server.host()));
    EXPECT_EQ(403, statusFor(server, address, "elsewhere.example"));
}

TEST(ListeningWithIpv6, OnTheLoopbackAddressIsReachableByIt) {
    if (!hasIpv6())
        GTEST_SKIP() << "This machine has no IPv6";
    const ServerProcess server({}, {}, "[::1]:0");
    EXPECT_EQ("[::1]", server.host());
    EXPECT_EQ(200, statusFor(server, "::1", "[::1]"));
    EXPECT_EQ(200, statusFor(server, "::1", "localhost"));
    EXPECT_EQ(403, statusFor(server, "::1", "127.0.0.1"));
    expectRefusal(server, "127.0.0.1");
}

TEST(ListeningWithIpv6, OnAllAddressesIsReachableByIpv4Too) {
    if (!hasIpv6())
        GTEST_SKIP() << "This machine has no IPv6";
    const ServerProcess server({}, {}, "[::]:0");
    EXPECT_EQ("[::]", server.host());
    EXPECT_EQ(200, statusFor(server, "::1", "[::1]"));
    EXPECT_EQ(200, statusFor(server, "::1", "localhost"));
    EXPECT_EQ(200, statusFor(server, "127.0.0.1", "127.0.0.1"));
    EXPECT_EQ(200, statusFor(server, "127.0.0.1", "localhost"));
    EXPECT_EQ(403, statusFor(server, "127.0.0.1", "[::1]"));
    EXPECT_EQ(403, statusFor(server, "127.0.0.1", "elsewhere.example"));
}

/// @return the descriptors of this process that programs which it starts would inherit
std::set<int> inheritedDescriptors() {
    std::set<int> inherited;
    constexpr int limit = 1024;
    for (int descriptor = 0; descriptor < limit; ++descriptor) {
        const int flags = ::fcntl(descriptor, F_GETFD);
        if (flags >= 0 && (flags & FD_CLOEXEC) == 0)
            inherited.insert(descriptor);
    }
    return inherited;
}

TEST(Listening, LeavesNoDescriptorToProgramsThatTheApplicationStarts) {
    const std::set<int> before = inheritedDescriptors();
    const test::InProcessServer server;
    EXPECT_EQ(200, test::get(server.port(), "/options").status);
    EXPECT_EQ(before, inheritedDescriptors());
}

} // namespace
