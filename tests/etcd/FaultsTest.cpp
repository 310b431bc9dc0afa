// Faults at random moments, beside a writer that counts up and readers that record.
#include "Load.hpp"

namespace {

using namespace test;

class FaultsTest : public testing::Test {
protected:
    /// Waits for a moment between two writes.
    void passSomeWrites() { ASSERT_TRUE(writer.writesMore(1 + moments.below(40))); }

    void expectAgreement(EtcdSource& source, const Reader& reader) {
        writer.stop();
        Client client(server.endpoint());
        EXPECT_TRUE(agrees(source, client));
        EXPECT_EQ("", reader.wrong());
    }

    Moments moments;
    EtcdServer server;
    Writer writer{server.endpoint()};
};

TEST_F(FaultsTest, OfAServerThatIsKilledLoseNothing) {
    const auto source = sourceOf(server.endpoint());
    Reader reader(*source);
    for (int round = 0; round < 3; ++round) {
        passSomeWrites();
        server.kill();
        server.restart();
    }
    passSomeWrites();
    expectAgreement(*source, reader);
    EXPECT_EQ(1u, source->status().lists);
}

TEST_F(FaultsTest, OfAConnectionThatIsCutLoseNothing) {
    Proxy proxy(server.port());
    const auto source = sourceOf(proxy.endpoint());
    Reader reader(*source);
    for (int round = 0; round < 10; ++round) {
        const auto watches = source->status().watches;
        proxy.cutAfter(moments.below(3'000)); // in the middle of a message
        passSomeWrites();
        ASSERT_TRUE(eventually([&] { return source->status().watches > watches; }));
    }
    expectAgreement(*source, reader);
    EXPECT_EQ(1u, source->status().lists);
}

TEST_F(FaultsTest, OfAProxyLoseNothing) {
    Proxy proxy(server.port());
    const auto source = sourceOf(proxy.endpoint());
    Reader reader(*source);
    for (int round = 0; round < 12; ++round) {
        switch (moments.below(4)) {
        case 0:
            proxy.refuse();
            break;
        case 1:
            proxy.drop();
            break;
        case 2:
            proxy.delay(std::chrono::milliseconds(moments.below(200)));
            break;
        default:
            proxy.cutAfter(moments.below(10'000));
        }
        passSomeWrites();
        proxy.pass();
        passSomeWrites();
    }
    expectAgreement(*source, reader);
}

TEST_F(FaultsTest, OfManySourcesEndInAgreement) {
    Proxy proxy(server.port());
    std::vector<std::shared_ptr<EtcdSource>> sources;
    for (int i = 0; i < 8; ++i)
        sources.push_back(sourceOf(proxy.endpoint()));
    for (int round = 0; round < 4; ++round) {
        proxy.refuse();
        passSomeWrites();
        proxy.pass();
        passSomeWrites();
    }
    writer.stop();
    Client client(server.endpoint());
    for (const auto& source : sources)
        EXPECT_TRUE(agrees(*source, client));
}

} // namespace
