#include "comparing/FileRereading.hpp"

#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace connector_config;

FileArgument argumentOf(const std::string& path, bool isOptional) {
    FileArgument argument;
    argument.path = path;
    argument.name = "f";
    argument.optional = isOptional;
    return argument;
}

TEST(FileRereading, ReadsWhatTheFileHasNowAndLeavesTheSourceAlone) {
    const test::TemporaryDirectory directory;
    const auto file = openFile(argumentOf(directory.write("f", "a=1\nb=2\n"), false));
    directory.write("f", "a=3\n");
    const RereadFiles read = reread(NamedFiles{file});
    ASSERT_EQ(1u, read.tables.tables.count("f"));
    EXPECT_EQ(1u, read.tables.tables.at("f").size());
    EXPECT_EQ(std::string("3"), boost::get<std::string>(read.tables.tables.at("f").at("a")));
    EXPECT_TRUE(read.failures.empty());
    EXPECT_EQ(2u, file->table()->size());
}

TEST(FileRereading, MissesAnOptionalFileOnlyIfItHadOptions) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("f", "a=1\n");
    const auto file = openFile(argumentOf(path, true));
    std::filesystem::remove(path);
    EXPECT_EQ(1u, reread(NamedFiles{file}).failures.size());
    EXPECT_TRUE(reread(NamedFiles{file}).tables.tables.empty());
    const auto missing = openFile(argumentOf(path, true));
    EXPECT_TRUE(reread(NamedFiles{missing}).failures.empty());
}

TEST(FileRereading, SkipsDevices) {
    const auto file = openFile(argumentOf("/dev/null", false));
    EXPECT_TRUE(reread(NamedFiles{file}).tables.tables.empty());
}

} // namespace
