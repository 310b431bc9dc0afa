/// TLS, with certificates that the test makes.
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <connector/service/HttpService.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include <sys/stat.h>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::service::HttpOptions;
using connector::service::HttpService;
using connector::service::TlsFiles;
using test::runInShell;

class Tls : public testing::Test {
protected:
    Tls() {
        makeCertificate("server");
        makeCertificate("client");
        configuration->set("a", 1).get();
    }

    std::string file(const std::string& name) const { return (directory.path / name).string(); }

    /// Makes NAME.pem and NAME.key, signed by themselves.
    void makeCertificate(const std::string& name) const {
        runInShell("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes "
                   "-days 2 -subj /CN=localhost"
                   " -addext 'subjectAltName=IP:127.0.0.1,DNS:localhost' -keyout " +
                   file(name + ".key") + " -out " + file(name + ".pem") + " 2>/dev/null");
    }

    std::unique_ptr<HttpService> serve(const std::string& clientAuthority = {}) const {
        HttpOptions options;
        options.tls = TlsFiles{file("server.pem"), file("server.key"), clientAuthority};
        auto service = std::make_unique<HttpService>(configuration, options);
        service->start();
        return service;
    }

    std::string statusFor(const HttpService& service, const std::string& arguments) const {
        return runInShell("curl -s -o /dev/null -w '%{http_code}' " + arguments + ' ' +
                          service.urls().front() + "/options/a");
    }

    const test::TemporaryDirectory directory;
    const std::shared_ptr<ConfigurationImpl> configuration = std::make_shared<ConfigurationImpl>();
};

TEST_F(Tls, ServesClientsThatTrustTheCertificate) {
    const auto service = serve();
    EXPECT_EQ(0u, service->urls().front().find("https://127.0.0.1:"));
    const std::string trust = "--cacert " + file("server.pem");
    EXPECT_EQ("200", statusFor(*service, trust));
    EXPECT_EQ("200", statusFor(*service, trust + " --tls-max 1.2"));
    EXPECT_EQ("000", statusFor(*service, "")) << "the client does not know the certificate";
    EXPECT_EQ("000", statusFor(*service, trust + " --tls-max 1.1"));
}

TEST_F(Tls, APlainClientGetsNoResponse) {
    const auto service = serve();
    std::string url = service->urls().front();
    url.erase(4, 1); // http
    EXPECT_EQ("000", runInShell("curl -s -o /dev/null -w '%{http_code}' " + url + "/options/a"));
}

TEST_F(Tls, WithAClientAuthorityClientsNeedACertificate) {
    const auto service = serve(file("client.pem"));
    const std::string trust = "--cacert " + file("server.pem");
    EXPECT_EQ("000", statusFor(*service, trust));
    EXPECT_EQ("200", statusFor(*service, trust + " --cert " + file("client.pem") + " --key " +
                                             file("client.key")));
    EXPECT_EQ("000", statusFor(*service, trust + " --cert " + file("server.pem") + " --key " +
                                             file("server.key")));
}

TEST_F(Tls, SendsEvents) {
    const auto service = serve();
    EXPECT_EQ(
        "data: {\"key\":\"a\",\"source\":\"override\",\"value\":{\"type\":\"int\",\"value\":1}}\n",
        runInShell("curl -s -N --cacert " + file("server.pem") + " '" + service->urls().front() +
                   "/watch?key=a' | grep -m 1 data"));
}

TEST_F(Tls, ReloadedFilesAreUsedForLaterConnections) {
    const auto service = serve();
    const std::string old = "--cacert " + file("server.pem") + ".old";
    std::filesystem::copy_file(file("server.pem"), file("server.pem.old"));
    makeCertificate("server");
    EXPECT_EQ("200", statusFor(*service, old));
    service->reloadTls();
    EXPECT_EQ("000", statusFor(*service, old));
    EXPECT_EQ("200", statusFor(*service, "--cacert " + file("server.pem")));
}

TEST_F(Tls, FilesThatCannotBeUsedLeaveTheOldOnes) {
    const auto service = serve();
    const std::string old = "--cacert " + file("server.pem") + ".old";
    std::filesystem::copy_file(file("server.pem"), file("server.pem.old"));
    const auto expectFailure = [&](const std::string& beginning) {
        try {
            service->reloadTls();
            ADD_FAILURE() << "The files are used";
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(0u, std::string(error.what()).find(beginning)) << error.what();
        }
    };
    directory.write("server.pem", "nonsense");
    expectFailure("TLS file could not be used: " + file("server.pem") + ": ");
    std::filesystem::copy_file(file("client.pem"), file("server.pem"),
                               std::filesystem::copy_options::overwrite_existing);
    expectFailure("TLS ");
    EXPECT_EQ("200", statusFor(*service, old));
}

TEST_F(Tls, OfTheProgramIsReloadedOnHangup) {
    test::Process program(
        test::connectorConfig({"-s", "a=1", "serve", "--http", "127.0.0.1:0", "--tls-cert",
                               file("server.pem"), "--tls-key", file("server.key")}));
    const std::string line = program.readLine();
    ASSERT_EQ(0u, line.find("listening on https://"));
    directory.write("server.pem", "nonsense");
    program.signal(SIGHUP);
    EXPECT_EQ(0u, program.readErrorLine().find("connector-config: TLS file could not be used: "));
    program.signal(SIGTERM);
    EXPECT_EQ((test::Result{0, "", ""}), program.finish());
}

TEST_F(Tls, APipeInPlaceOfAFileIsRefusedAtOnce) {
    const auto service = serve();
    std::filesystem::remove(file("server.pem"));
    ASSERT_EQ(0, ::mkfifo(file("server.pem").c_str(), 0600));
    try {
        service->reloadTls();
        ADD_FAILURE() << "It is used";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ("TLS file could not be used: " + file("server.pem") + ": Not a regular file",
                  error.what());
    }
}

TEST_F(Tls, AMissingFileIsSaidToBeMissing) {
    const auto service = serve();
    std::filesystem::remove(file("server.key"));
    try {
        service->reloadTls();
        ADD_FAILURE() << "It is used";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ("TLS file could not be used: " + file("server.key") +
                      ": No such file or directory",
                  error.what());
    }
}

} // namespace
