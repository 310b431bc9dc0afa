// The cache file of a source.
#include "Fixture.hpp"

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using namespace test;

class CacheTest : public testing::Test {
protected:
    CacheTest() { options.cacheFile = folder.path / "cache"; }

    std::string content() const {
        std::ifstream stream(options.cacheFile, std::ios_base::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    const TemporaryDirectory folder;
    EtcdServer server;
    Client client{server.endpoint()};
    Options options = optionsFor({server.endpoint()});
};

TEST_F(CacheTest, IsWrittenWithinASecondOfAChange) {
    const auto source = std::make_shared<EtcdSource>(options);
    ASSERT_TRUE(eventually([&] { return !content().empty(); }));
    EXPECT_TRUE(oneOfThree([&] {
        const std::string before = content();
        client.put(prefix + "a", "1");
        return eventually([&] { return content() != before; }, 1s);
    }));
    struct stat state {};
    ASSERT_EQ(0, ::stat(options.cacheFile.c_str(), &state));
    EXPECT_EQ(0600u, state.st_mode & 0777u);
}

TEST_F(CacheTest, IsWrittenAtTheEnd) {
    options.timing.cacheDelay = 1h;
    {
        const EtcdSource source(options);
        ASSERT_TRUE(source.waitFor(client.put(prefix + "a", "1"), 30s));
        EXPECT_EQ("", content());
    }
    EXPECT_NE("", content());
    // No draft is left beside it.
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(folder.path), {}));
}

TEST_F(CacheTest, GivesTheValuesWhenTheEngineIsAway) {
    client.put(prefix + "a", "1");
    client.put(prefix + "b", R"({"type":"intArray","value":[1,2]})");
    { const EtcdSource source(options); }
    server.kill();
    for (const Startup startup : {Startup::Cached(), Startup::Wait(100ms)}) {
        options.startup = startup;
        const auto source = std::make_shared<EtcdSource>(options);
        EXPECT_EQ("1", textOf(*source, "a"));
        EXPECT_EQ(OptionValue(std::vector<int>{1, 2}), source->table()->at("b"));
        EXPECT_EQ(3, source->status().revision);
    }
}

TEST_F(CacheTest, SparesTheList) {
    client.put(prefix + "a", "1");
    client.put(prefix + "b", "1");
    { const EtcdSource source(options); }
    client.put(prefix + "a", "2");
    client.erase(prefix + "b");
    client.put(prefix + "c", "3");
    const EtcdSource source(options);
    EXPECT_EQ(client.list(prefix).values, textsOf(source)); // at once: the constructor has waited
    EXPECT_EQ(0u, source.status().lists);
    EXPECT_EQ(State::Current, source.status().state);
}

TEST_F(CacheTest, OfARevisionThatIsCompactedIsListedAgain) {
    client.put(prefix + "a", "1");
    { const EtcdSource source(options); }
    client.erase(prefix + "a");
    server.control("compact " + std::to_string(client.put(prefix + "b", "2")));
    const EtcdSource source(options);
    EXPECT_EQ(client.list(prefix).values, textsOf(source));
    EXPECT_EQ(1u, source.status().lists);
}

TEST_F(CacheTest, ThatIsDamagedIsAFailureInTheStatus) {
    client.put(prefix + "a", "1");
    { const EtcdSource source(options); }
    std::fstream(options.cacheFile, std::ios_base::in | std::ios_base::out).seekp(40).put('#');
    server.kill();
    options.startup = Startup::Cached();
    const EtcdSource source(options);
    EXPECT_TRUE(source.table()->empty());
    EXPECT_EQ(options.cacheFile.string() + ": damaged", source.status().failure);
}

TEST_F(CacheTest, ThatCannotBeWrittenIsAFailureInTheStatus) {
    options.cacheFile = folder.path / "missing" / "cache";
    EtcdSource source(options);
    Observer observer(source);
    EXPECT_TRUE(observer.waitUntil([&](const Status& status) {
        return status.failure.find(options.cacheFile.string()) == 0 &&
               status.state == State::Current;
    }));
}

} // namespace
