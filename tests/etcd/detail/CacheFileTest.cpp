// The format of the cache file.
#include <connector/etcd/detail/CacheFile.hpp>

#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

using connector::configuration::OptionValue;
using connector::etcd::detail::CacheFile;
using connector::etcd::detail::Known;
using connector::sources::Table;

class CacheFileTest : public testing::Test {
protected:
    CacheFileTest() {
        known.revision = 1'234;
        known.clusterId = 0xFEDCBA9876543210u;
        known.witness = {"p/a", 1'230, 0xDEADBEEFu, 7};
        known.unreadable =
            std::make_shared<const std::set<std::string>>(std::set<std::string>{"x", "y"});
        table = {{"a", 5}, {"b", std::string("text")}, {"c", std::vector<double>{0.5}}};
    }

    std::string written() const {
        std::ifstream stream(path, std::ios_base::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    const test::TemporaryDirectory folder;
    const std::filesystem::path path = folder.path / "cache";
    const CacheFile file{path, "p/"};
    Known known;
    Table table;
};

TEST_F(CacheFileTest, IsReadAsItWasWritten) {
    file.write(table, known);
    const auto read = file.read();
    ASSERT_TRUE(read);
    EXPECT_TRUE(table == read->table);
    EXPECT_EQ(known.revision, read->known.revision);
    EXPECT_EQ(known.clusterId, read->known.clusterId);
    EXPECT_EQ(known.witness.key, read->known.witness.key);
    EXPECT_EQ(known.witness.modRevision, read->known.witness.modRevision);
    EXPECT_EQ(known.witness.valueSum, read->known.witness.valueSum);
    EXPECT_EQ(known.witness.at, read->known.witness.at);
    EXPECT_EQ(*known.unreadable, *read->known.unreadable);
}

TEST_F(CacheFileTest, IsNothingIfThereIsNoFile) {
    EXPECT_FALSE(file.read());
}

TEST_F(CacheFileTest, EveryDamagedByteIsNoticed) {
    file.write(table, known);
    const std::string whole = written();
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string damaged = whole;
        damaged[i] = static_cast<char>(damaged[i] ^ 0x20);
        folder.write("cache", damaged);
        EXPECT_THROW(file.read(), std::runtime_error) << i;
        folder.write("cache", whole.substr(0, i));
        EXPECT_THROW(file.read(), std::runtime_error) << i;
    }
    folder.write("cache", whole + '\0');
    EXPECT_THROW(file.read(), std::runtime_error);
}

TEST_F(CacheFileTest, OfAnotherPrefixIsRefused) {
    file.write(table, known);
    try {
        CacheFile(path, "q/").read();
        FAIL() << "it was read";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(path.string() + ": belongs to another prefix", error.what());
    }
}

TEST_F(CacheFileTest, StaysIfItCannotBeReplaced) {
    std::filesystem::create_directory(path); // nothing can be renamed to it
    std::ofstream(path / "inner") << "x";
    EXPECT_THROW(file.write(table, known), std::runtime_error);
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(folder.path), {}));
    EXPECT_THROW(file.read(), std::runtime_error);
}

} // namespace
