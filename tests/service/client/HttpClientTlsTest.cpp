/// Services that the client trusts, and others.
#include "service/client/ServedConfiguration.hpp"

#include <gmock/gmock.h>

#include <cstdlib>

namespace {

using test::errorOf;
using testing::HasSubstr;

class HttpClientTls : public test::ServedConfiguration {
protected:
    HttpClientTls() {
        configuration->set("net.port", 1).get();
        makeCertificate("ca", "subjectAltName=DNS:unused", "");
        makeCertificate("server", "subjectAltName=DNS:localhost,IP:127.0.0.1", "ca");
        options.addresses = {connector::service::ListenAddress()};
        options.tls = {path("server.crt"), path("server.key"), ""};
    }

    std::string path(const std::string& name) const { return (directory.path / name).string(); }

    /// @param issuer  the authority that signs the certificate; itself if it is empty
    void makeCertificate(const std::string& name, const std::string& extension,
                         const std::string& issuer) const {
        std::string command = "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 "
                              "-nodes -days 2 -subj /CN=" +
                              name + " -addext " + extension + " -keyout " + path(name + ".key") +
                              " -out " + path(name + ".crt");
        if (!issuer.empty())
            command += " -addext basicConstraints=critical,CA:FALSE -CA " + path(issuer + ".crt") +
                       " -CAkey " + path(issuer + ".key");
        command += " >" + path("openssl.txt") + " 2>&1";
        ASSERT_EQ(0, std::system(command.c_str())) << command;
    }

    HttpClientOptions trusting(const std::string& authority) const {
        HttpClientOptions client = clientOptions();
        client.authority = authority.empty() ? "" : path(authority);
        return client;
    }
};

TEST_F(HttpClientTls, TrustsItsAuthority) {
    start();
    HttpClient client(trusting("ca.crt"));
    EXPECT_TRUE(client.get("net.port"));
    EXPECT_EQ(1u, client.keys().size());
    int calls = 0;
    client.watch({{"net.port"}, {}}, [&](const auto&) {
        ++calls;
        client.stopWatching();
    });
    EXPECT_EQ(1, calls);
}

TEST_F(HttpClientTls, TrustsNobodyElse) {
    start();
    EXPECT_THAT(errorOf([&] { HttpClient(trusting("")).keys(); }).what(),
                HasSubstr("certificate: "));
    makeCertificate("other", "subjectAltName=DNS:unused", "");
    EXPECT_THAT(errorOf([&] { HttpClient(trusting("other.crt")).keys(); }).what(),
                HasSubstr("certificate: "));
}

TEST_F(HttpClientTls, ChecksTheHost) {
    makeCertificate("elsewhere", "subjectAltName=DNS:elsewhere.example", "ca");
    options.tls = {path("elsewhere.crt"), path("elsewhere.key"), ""};
    start();
    EXPECT_THAT(errorOf([&] { HttpClient(trusting("ca.crt")).keys(); }).what(),
                HasSubstr("certificate: IP address mismatch"));
    HttpClientOptions byName = trusting("ca.crt");
    byName.url = "https://localhost" + byName.url.substr(byName.url.rfind(':'));
    EXPECT_THAT(errorOf([&] { HttpClient(byName).keys(); }).what(),
                HasSubstr("certificate: hostname mismatch"));
}

TEST_F(HttpClientTls, ShowsItsCertificate) {
    makeCertificate("client", "subjectAltName=DNS:client", "ca");
    options.tls->clientAuthority = path("ca.crt");
    start();
    HttpClientOptions known = trusting("ca.crt");
    known.certificate = path("client.crt");
    known.key = path("client.key");
    EXPECT_TRUE(HttpClient(known).get("net.port"));
    EXPECT_EQ(0u, errorOf([&] { HttpClient(trusting("ca.crt")).keys(); }).status());
}

TEST_F(HttpClientTls, ReadsItsFilesAtOnce) {
    start();
    try {
        HttpClient client(trusting("no.crt"));
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("TLS file could not be used: " + path("no.crt")));
    }
}

} // namespace
