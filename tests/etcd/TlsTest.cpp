// Encrypted connections.
#include "Fixture.hpp"
#include "support/Certificates.hpp"

namespace {

using namespace test;

class TlsTest : public testing::Test {
protected:
    TlsTest() { options.tls.authorities = certificates.file("ca.pem"); }

    const Certificates certificates;
    EtcdServer server{{},
                      ServerTls{certificates.file("ca.pem"), certificates.file("server.pem"),
                                certificates.file("server.key")}};
    Options options = optionsFor({server.endpoint()});
};

TEST_F(TlsTest, IsUsed) {
    const auto source = std::make_shared<EtcdSource>(options);
    const std::int64_t revision = source->put("a", "1").get();
    EXPECT_TRUE(source->waitFor(revision, 30s));
}

TEST_F(TlsTest, AnExpiredCertificateIsRefusedUntilItIsRenewed) {
    const auto source = std::make_shared<EtcdSource>(options);
    Observer observer(*source);
    ASSERT_TRUE(observer.waitFor(State::Current));
    certificates.sign(0);
    server.kill();
    server.restart();
    EXPECT_TRUE(observer.waitUntil([](const Status& status) {
        return status.state == State::Stale &&
               status.failure.find("certificate verify failed") != std::string::npos;
    }));
    certificates.sign(2);
    server.kill();
    server.restart();
    EXPECT_TRUE(observer.waitFor(State::Current));
}

TEST_F(TlsTest, AnUnknownAuthorityIsRefused) {
    const Certificates others;
    options.tls.authorities = others.file("ca.pem");
    options.startup = Startup::Wait(500ms);
    EXPECT_THROW(EtcdSource{options}, std::runtime_error);
}

TEST_F(TlsTest, AFileThatIsMissingIsNamed) {
    options.tls.authorities = "missing.pem";
    options.startup = Startup::Empty();
    EtcdSource source(options);
    Observer observer(source);
    EXPECT_TRUE(observer.waitUntil([&](const Status& status) {
        return status.failure == server.endpoint() + ": The file cannot be read: missing.pem";
    }));
}

} // namespace
