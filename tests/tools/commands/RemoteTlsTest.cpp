/// The commands on a running service that wants client certificates.
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <optional>
#include <string>
#include <vector>

namespace {

using test::Result;
using test::runConnectorConfig;
using testing::HasSubstr;
using testing::StartsWith;

using Arguments = std::vector<std::string>;

class RemoteTls : public testing::Test {
protected:
    RemoteTls() {
        makeCertificate("server");
        makeCertificate("client");
        makeCertificate("stranger");
        service.emplace(test::connectorConfig({"-s", "net.port:int=80", "serve", "--http",
                                               "127.0.0.1:0", "--writable", "net.", "--tls-cert",
                                               file("server.pem"), "--tls-key", file("server.key"),
                                               "--client-ca", file("client.pem")}));
        const std::string line = service->readLine();
        const std::string beginning = "listening on ";
        EXPECT_THAT(line, StartsWith(beginning + "https://"));
        url = line.substr(beginning.size());
    }

    ~RemoteTls() override { service->signal(SIGTERM); }

    std::string file(const std::string& name) const { return (directory.path / name).string(); }

    /// Makes NAME.pem and NAME.key. The certificate is its own authority.
    void makeCertificate(const std::string& name) const {
        const Result result =
            test::run({"openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                       "ec_paramgen_curve:P-256", "-nodes", "-days", "2", "-subj", "/CN=" + name,
                       "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", file(name + ".key"),
                       "-out", file(name + ".pem")});
        ASSERT_EQ(0, result.status) << result.errors;
    }

    /// @param identity  whose certificate and key are used; empty for none
    Result ask(const std::string& identity, Arguments arguments) const {
        arguments.insert(arguments.end(), {"--ca", file("server.pem")});
        if (!identity.empty())
            arguments.insert(arguments.end(), {"--client-cert", file(identity + ".pem"),
                                               "--client-key", file(identity + ".key")});
        return runConnectorConfig(arguments);
    }

    const test::TemporaryDirectory directory;
    std::optional<test::Process> service;
    std::string url;
};

TEST_F(RemoteTls, TheCertificateOfAClientOpensTheService) {
    EXPECT_EQ((Result{0, "80\n", ""}), ask("client", {"--url", url, "get", "net.port"}));
    EXPECT_EQ((Result{0, "", ""}), ask("client", {"set", "net.port:int=81", "--url", url}));
    EXPECT_EQ((Result{0, "81\n", ""}), ask("client", {"get", "net.port", "--url", url}));
}

TEST_F(RemoteTls, WithoutItTheServiceRefusesTheConnection) {
    for (const char* identity : {"", "stranger"}) {
        SCOPED_TRACE(identity);
        const Result result = ask(identity, {"--url", url, "get", "net.port"});
        EXPECT_EQ(1, result.status);
        EXPECT_EQ("", result.output);
        EXPECT_THAT(result.errors, HasSubstr(url));
    }
}

TEST_F(RemoteTls, DiffUsesTheCertificateForItsSides) {
    EXPECT_EQ((Result{0, "", ""}), ask("client", {"diff", "--url", url, "--url", url}));
    EXPECT_EQ((Result{0, "", ""}), ask("client", {"--url", url, "diff", "--url", url}));
    const Result result = ask("", {"diff", "--url", url, "--url", url});
    EXPECT_EQ(2, result.status);
    EXPECT_THAT(result.errors, HasSubstr(url));
}

TEST_F(RemoteTls, DiffUsesTheCertificateForOneSideOnly) {
    const std::string socket = "unix:" + file("socket");
    test::Process other(
        test::connectorConfig({"-s", "net.port:int=80", "serve", "--http", socket}));
    ASSERT_EQ("listening on " + socket, other.readLine());
    EXPECT_EQ((Result{0, "", ""}), ask("client", {"diff", "--url", url, "--url", socket}));
    EXPECT_EQ((Result{0, "", ""}), ask("client", {"--url", socket, "diff", "--url", url}));
    other.signal(SIGTERM);
}

TEST_F(RemoteTls, FilesThatCannotBeUsedAreReported) {
    const std::string none = file("none.pem");
    EXPECT_EQ((Result{1, "",
                      "connector-config: TLS file could not be used: " + none +
                          ": No such file or directory\n"}),
              runConnectorConfig({"--url", url, "--ca", file("server.pem"), "--client-cert", none,
                                  "--client-key", file("client.key"), "keys"}));
    const Result result =
        runConnectorConfig({"--url", url, "--ca", file("server.pem"), "--client-cert",
                            file("client.pem"), "--client-key", file("stranger.key"), "keys"});
    EXPECT_EQ(1, result.status);
    EXPECT_THAT(result.errors, StartsWith("connector-config: TLS file could not be used: " +
                                          file("stranger.key")));
}

} // namespace
