/// Serving on Unix sockets.
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <connector/service/HttpService.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::service::HttpOptions;
using connector::service::HttpService;
namespace fs = std::filesystem;

HttpOptions at(const std::string& path) {
    HttpOptions options;
    options.addresses = {{"", 0, path}};
    return options;
}

std::string curl(const std::string& socket, const std::string& arguments) {
    return test::runInShell("curl -s --unix-socket " + socket + ' ' + arguments);
}

class UnixSocket : public testing::Test {
protected:
    std::unique_ptr<HttpService> serve() const {
        auto service = std::make_unique<HttpService>(configuration, at(path));
        service->start();
        return service;
    }

    void expectRefusal(const std::string& reason) const {
        try {
            serve();
            ADD_FAILURE() << "It is served";
        } catch (const std::runtime_error& error) {
            EXPECT_EQ("Cannot listen on unix:" + path + ": " + reason, error.what());
        }
    }

    const test::TemporaryDirectory directory;
    const std::string path = (directory.path / "socket").string();
    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
};

TEST_F(UnixSocket, IsServedForItsOwnerOnly) {
    configuration->set("a", 1).get();
    const auto service = serve();
    EXPECT_EQ("unix:" + path, service->urls().front());
    struct stat status {};
    ASSERT_EQ(0, ::stat(path.c_str(), &status));
    EXPECT_EQ(0600u, status.st_mode & 0777u);
    const std::string option =
        R"({"key":"a","source":"override","value":{"type":"int","value":1}})";
    EXPECT_EQ(option + "\n", curl(path, "http://localhost/options/a"));
    EXPECT_EQ("403", curl(path, "-o /dev/null -w '%{http_code}' http://elsewhere/options/a"));
}

TEST_F(UnixSocket, IsRemovedAtTheEnd) {
    const auto service = serve();
    service->stop();
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(UnixSocket, OfAServerThatIsGoneIsReplaced) {
    { // leaves its socket behind, as a process that is killed does
        auto service = serve();
        fs::rename(path, path + "2");
        service.reset();
        fs::rename(path + "2", path);
    }
    const auto service = serve();
    EXPECT_EQ("200", curl(path, "-o /dev/null -w '%{http_code}' http://localhost/options"));
}

TEST_F(UnixSocket, OfAServerThatListensIsLeftAlone) {
    const auto service = serve();
    expectRefusal("Address already in use");
    EXPECT_EQ("200", curl(path, "-o /dev/null -w '%{http_code}' http://localhost/options"));
}

TEST_F(UnixSocket, DoesNotReplaceAnotherFile) {
    directory.write("socket", "text");
    expectRefusal("There is another file of that name");
    EXPECT_TRUE(fs::is_regular_file(path));
}

TEST_F(UnixSocket, MustHaveAPathThatTheSystemCanHold) {
    try {
        const HttpService service(configuration, at(path + std::string(200, 'x')));
        ADD_FAILURE() << "It is served";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string::npos, std::string(error.what()).find("The path is too long"));
    }
}

TEST_F(UnixSocket, OfTheProgramIsPrintedBesideOtherAddresses) {
    test::Process program(test::connectorConfig(
        {"-s", "a=1", "serve", "--http", "127.0.0.1:0", "--http", "unix:" + path}));
    EXPECT_EQ(0u, program.readLine().find("listening on http://127.0.0.1:"));
    EXPECT_EQ("listening on unix:" + path, program.readLine());
    EXPECT_EQ("200", curl(path, "-o /dev/null -w '%{http_code}' http://localhost/options/a"));
    program.signal(SIGTERM);
    EXPECT_EQ((test::Result{0, "", ""}), program.finish());
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(UnixSocket, OfAnotherProgramIsNotReplacedWhateverItsType) {
    for (const int type : {SOCK_DGRAM, SOCK_SEQPACKET}) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const int other = ::socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
        ASSERT_EQ(0, ::bind(other, reinterpret_cast<const sockaddr*>(&address), sizeof address));
        if (type == SOCK_SEQPACKET) {
            ASSERT_EQ(0, ::listen(other, 1));
        }
        expectRefusal("Address already in use");
        ::close(other);
        EXPECT_TRUE(fs::remove(path));
    }
}

TEST_F(UnixSocket, AnotherFileAtItsPathIsNotRemovedAtTheEnd) {
    auto service = serve();
    fs::remove(path);
    directory.write("socket", "precious");
    service.reset();
    EXPECT_TRUE(fs::is_regular_file(path));
}

TEST_F(UnixSocket, OfALaterServerIsNotRemovedAtTheEndOfAnEarlierOne) {
    auto earlier = serve();
    fs::remove(path);
    const auto later = serve();
    earlier.reset();
    EXPECT_EQ("{\"status\":\"alive\"}\n", curl(path, "http://localhost/healthz"));
}

} // namespace
