// Three members.
#include "Load.hpp"

namespace {

using namespace test;

TEST(ClusterTest, ALeaderThatIsKilledLosesNothing) {
    Moments moments;
    EtcdCluster cluster;
    const auto source = std::make_shared<EtcdSource>(optionsFor(cluster.endpoints()));
    Reader reader(*source);
    int number = 1;
    for (int round = 0; round < 2; ++round) {
        const std::size_t leader = cluster.leader();
        const std::size_t other = (leader + 1) % 3;
        Writer writer(cluster[other].endpoint(), number);
        ASSERT_TRUE(writer.writesMore(1 + moments.below(40)));
        cluster[leader].kill();
        ASSERT_TRUE(writer.writesMore(1 + moments.below(40)));
        cluster[leader].restart();
        ASSERT_TRUE(writer.writesMore(1 + moments.below(40)));
        writer.stop();
        number = writer.next();
        cluster[leader].waitUntilReady();
        Client client(cluster[other].endpoint());
        EXPECT_TRUE(agrees(*source, client));
    }
    EXPECT_EQ("", reader.wrong());
    EXPECT_EQ(1u, source->status().lists);
}

TEST(ClusterTest, WithoutAQuorumASourceIsStaleWithin4Seconds) {
    EtcdCluster cluster;
    const auto source = std::make_shared<EtcdSource>(optionsFor({cluster[0].endpoint()}));
    const std::int64_t revision = source->put("a", "1").get();
    ASSERT_TRUE(source->waitFor(revision, 30s));
    EXPECT_TRUE(oneOfThree([&] {
        EXPECT_TRUE(becomesCurrent(*source));
        const bool isInTime = isStaleInTime(*source, [&] {
            cluster[1].kill();
            cluster[2].kill();
        });
        EXPECT_EQ("1", textOf(*source, "a"));
        cluster[1].restart();
        cluster[2].restart();
        return isInTime;
    }));
    EXPECT_TRUE(becomesCurrent(*source));
    EXPECT_EQ(1u, source->status().lists);
}

} // namespace
