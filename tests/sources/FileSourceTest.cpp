#include "configuration/properties/parsing/PropertyRows.hpp"
#include "sources/Shown.hpp"
#include "support/Expect.hpp"
#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/sources/PropertyFileSource.hpp>
#include <connector/sources/FileSource.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <thread>
#include <unistd.h>

namespace test {

namespace {

using connector::configuration::OptionValue;
using connector::sources::FileError;
using connector::sources::FileFormat;
using connector::sources::FileSource;
using connector::sources::formatByExtension;
using connector::sources::IfMissing;
using connector::sources::Table;
using connector::sources::TableChange;

using Keys = std::vector<std::string>;

} // namespace

class FileSourceTest : public testing::Test {
protected:
    const TemporaryDirectory directory;
};

TEST_F(FileSourceTest, TheExtensionNamesTheFormat) {
    EXPECT_EQ(OptionValue(std::string("1")),
              FileSource(directory.write("a.properties", "a=1\n")).get("a"));
    EXPECT_EQ(OptionValue(1), FileSource(directory.write("a.json", "{\"a\":1}")).get("a"));
    EXPECT_EQ(OptionValue(1), FileSource(directory.write("a.yaml", "a: 1")).get("a"));
    EXPECT_EQ(OptionValue(1), FileSource(directory.write("a.yml", "a: 1")).get("a"));
    EXPECT_EQ(OptionValue(1), FileSource(directory.write("a.toml", "a = 1")).get("a"));
    EXPECT_EQ(OptionValue(1), FileSource(directory.write("a.JSON", "{\"a\":1}")).get("a"));
}

TEST_F(FileSourceTest, TheFormatOfAPathIsKnownWithoutItsFile) {
    EXPECT_EQ(FileFormat::Properties, formatByExtension("no/such/a.b.properties"));
    EXPECT_EQ(FileFormat::Json, formatByExtension("a.JSON"));
    EXPECT_EQ(FileFormat::Yaml, formatByExtension("a.yaml"));
    EXPECT_EQ(FileFormat::Yaml, formatByExtension("a.yml"));
    EXPECT_EQ(FileFormat::Toml, formatByExtension("a.toml"));
    for (const char* path : {"", "a", "json", ".json", "a.txt", "a.json/b", "a.json."})
        EXPECT_EQ(std::nullopt, formatByExtension(path)) << path;
}

TEST_F(FileSourceTest, TheFormatWinsOverTheExtension) {
    const FileSource source(directory.write("a.json", "a: 1"), FileFormat::Yaml);
    EXPECT_EQ(FileFormat::Yaml, source.format());
    EXPECT_EQ(1u, source.table()->count("a"));
}

TEST_F(FileSourceTest, AnUnknownExtensionIsRefused) {
    for (const char* name : {"a", "a.txt", "json", ".json"}) {
        const auto path = directory.write(name, "{}");
        expectThrows<std::invalid_argument>("The extension of the file names no format: " +
                                                path.string(),
                                            [&] { FileSource source(path); });
    }
}

TEST_F(FileSourceTest, AMissingFileIsAnError) {
    const auto path = directory.path / "missing.json";
    expectThrows<FileError>(path.string() +
                                ": The file could not be read: No such file or directory",
                            [&] { FileSource source(path); });
    expectThrows<FileError>(path.string() +
                                ": The file could not be read: No such file or directory",
                            [&] { FileSource source(path, FileFormat::Properties); });
}

TEST_F(FileSourceTest, AMissingFileMayBeEmptyAtFirst) {
    const auto path = directory.path / "missing.json";
    FileSource source(path, FileFormat::ByExtension, IfMissing::Empty);
    EXPECT_TRUE(source.table()->empty());
    EXPECT_THROW(source.reload(), FileError);
    directory.write("missing.json", "{\"a\":1}");
    EXPECT_EQ(Keys{"a"}, source.reload().added);
    std::filesystem::remove(path);
    EXPECT_THROW(source.reload(), FileError);
    EXPECT_EQ(OptionValue(1), source.get("a"));
}

TEST_F(FileSourceTest, AFileThatIsThereMustBeRightUnderIfMissingEmpty) {
    EXPECT_THROW(FileSource(directory.write("a.json", ""), FileFormat::Json, IfMissing::Empty),
                 FileError);
}

TEST_F(FileSourceTest, ADirectoryIsNoFile) {
    expectThrows<FileError>(directory.path.string() +
                                ": The file could not be read: Is a directory",
                            [&] { FileSource source(directory.path, FileFormat::Json); });
}

TEST_F(FileSourceTest, APathWithAZeroByteIsNoFile) {
    std::string path = directory.write("a.json", "{}").string();
    path += std::string("\0.json", 6);
    EXPECT_THROW(FileSource(path, FileFormat::Json), FileError);
}

TEST_F(FileSourceTest, AnErrorHasItsPlace) {
    const auto path = directory.write("a.json", "{\n \"a\": tru}");
    try {
        FileSource source(path);
        FAIL();
    } catch (const FileError& error) {
        EXPECT_EQ(2u, error.line());
        EXPECT_EQ(10u, error.column());
        EXPECT_EQ(path.string() + ":2:10: Invalid JSON: invalid literal",
                  std::string(error.what()));
    }
}

TEST_F(FileSourceTest, ReloadTakesUpWhatChanged) {
    FileSource source(directory.write("a.json", R"({"a": 1, "b": 2})"));
    Keys told;
    source.setWatcher([&](const std::string& key) { told.push_back(key); });
    EXPECT_TRUE(source.reload().empty());
    directory.write("a.json", R"({"a": 7, "c": 2})");
    const TableChange change = source.reload();
    EXPECT_EQ(Keys{"c"}, change.added);
    EXPECT_EQ(Keys{"a"}, change.changed);
    EXPECT_EQ(Keys{"b"}, change.removed);
    EXPECT_EQ((Keys{"a", "b", "c"}), told);
}

TEST_F(FileSourceTest, AReloadThatFailsChangesNothing) {
    FileSource source(directory.write("a.json", R"({"a": 1})"));
    source.setWatcher([](const std::string&) { ADD_FAILURE(); });
    directory.write("a.json", R"({"a": 2, "b": )");
    EXPECT_THROW(source.reload(), FileError);
    EXPECT_EQ(OptionValue(1), source.get("a"));
    EXPECT_FALSE(source.has("b"));
}

TEST_F(FileSourceTest, AWatcherMayReload) {
    FileSource source(directory.write("a.json", R"({"a": 1})"));
    int calls = 0;
    source.setWatcher([&](const std::string&) {
        if (++calls == 1)
            source.reload();
    });
    directory.write("a.json", R"({"a": 2})");
    source.reload();
    EXPECT_EQ(1, calls);
}

TEST_F(FileSourceTest, WhatTheWatcherThrowsPassesAndTheTableIsNew) {
    FileSource source(directory.write("a.json", R"({"a": 1})"));
    source.setWatcher([](const std::string&) { throw std::range_error("watcher"); });
    directory.write("a.json", R"({"a": 2})");
    expectThrows<std::range_error>("watcher", [&] { source.reload(); });
    EXPECT_EQ(OptionValue(2), source.get("a"));
}

TEST_F(FileSourceTest, ARelativePathStaysWithItsDirectory) {
    const auto before = std::filesystem::current_path();
    directory.write("a.json", R"({"a": 1})");
    std::filesystem::current_path(directory.path);
    FileSource source("a.json");
    std::filesystem::current_path(before);
    EXPECT_NO_THROW(source.reload());
    EXPECT_EQ("a.json", source.path());
}

TEST_F(FileSourceTest, ManyThreadsReloadAndReadTheNewestFile) {
    FileSource source(directory.write("a.json", R"({"a": 0})"));
    for (int round = 1; round < 30; ++round) {
        const auto beside = directory.write("b.json", R"({"a": )" + std::to_string(round) + "}");
        std::vector<std::thread> threads;
        for (int i = 0; i < 3; ++i)
            threads.emplace_back([&] { source.reload(); });
        std::filesystem::rename(beside, directory.path / "a.json");
        threads.emplace_back([&] { source.reload(); });
        for (std::thread& thread : threads)
            thread.join();
        ASSERT_EQ(OptionValue(round), source.get("a"));
    }
}

TEST_F(FileSourceTest, PropertyFilesReadAsThePropertyFileSourceDoes) {
    for (const PropertyRow& row : propertyRows()) {
        SCOPED_TRACE(row.input);
        const auto path = directory.write("a.properties", row.input);
        connector::configuration::PropertyFileSource expected(path.u16string());
        FileSource source(path);
        EXPECT_EQ(expected.keys(), source.keys());
        for (const std::string& key : expected.keys())
            EXPECT_EQ(expected.get(key), source.get(key));
    }
}

TEST_F(FileSourceTest, PropertyFilesKeepAllBytes) {
    FileSource source(directory.write("a.properties", "\xEF\xBB\xBF"
                                                      "a=\xFF\n"));
    EXPECT_EQ(OptionValue(std::string("\xFF")), source.get("\xEF\xBB\xBF"
                                                           "a"));
}

} // namespace test
