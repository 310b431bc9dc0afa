/// What serve tells systemd.
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <cstring>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using test::ServerProcess;

/// The socket that systemd would have.
class Manager : public testing::Test {
protected:
    /// @param name  of the socket; an abstract one begins with @
    void listen(const std::string& name) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        ASSERT_LT(name.size(), sizeof address.sun_path);
        std::memcpy(address.sun_path, name.data(), name.size());
        if (name[0] == '@')
            address.sun_path[0] = '\0';
        const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
        ASSERT_EQ(0, ::bind(socket, reinterpret_cast<const sockaddr*>(&address), length));
        environment = "export NOTIFY_SOCKET='" + name + "'";
    }
    ~Manager() override { ::close(socket); }

    /// Waits for the next message.
    std::string receive() const {
        char buffer[256];
        const ssize_t size = ::recv(socket, buffer, sizeof buffer, 0);
        return size < 0 ? "failed" : std::string(buffer, static_cast<std::size_t>(size));
    }

    const test::TemporaryDirectory directory;
    const std::string path = (directory.path / "notify").string();
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    std::string environment;
};

TEST_F(Manager, IsToldOfEachPhase) {
    listen(path);
    ServerProcess server({}, {}, "127.0.0.1:0", environment);
    EXPECT_EQ("READY=1", receive());
    EXPECT_EQ(200, test::get(server.port(), "/healthz").status);
    for (int i = 0; i < 2; ++i) {
        server.process().signal(SIGHUP);
        const std::string reloading = receive();
        EXPECT_EQ(0u, reloading.find("RELOADING=1\nMONOTONIC_USEC=")) << reloading;
        EXPECT_EQ("READY=1", receive());
    }
    EXPECT_EQ((test::Result{0, "", ""}), server.stop());
    EXPECT_EQ("STOPPING=1", receive());
}

TEST_F(Manager, CanHaveAnAbstractSocket) {
    listen('@' + path);
    const ServerProcess server({}, {}, "127.0.0.1:0", environment);
    EXPECT_EQ("READY=1", receive());
}

TEST(WithoutManager, NothingIsTold) {
    for (const char* const socket : {"relative", "/none/at/all", ""}) {
        ServerProcess server({}, {}, "127.0.0.1:0",
                             std::string("export NOTIFY_SOCKET='") + socket + "'");
        EXPECT_EQ((test::Result{0, "", ""}), server.stop()) << socket;
    }
}

} // namespace
