#include "sources/Shown.hpp"
#include "sources/Watching.hpp"
#include "support/Expect.hpp"
#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/sources/FileWatcher.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <fstream>
#include <mutex>
#include <optional>
#include <thread>

namespace test {

namespace {

namespace fs = std::filesystem;

using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using connector::sources::FileError;
using connector::sources::FileFormat;
using connector::sources::FileSource;
using connector::sources::FileWatcher;
using connector::sources::IfMissing;
using connector::sources::TableChange;
using std::chrono::milliseconds;

/// The reports of a watcher: "NAME +ADDED ~CHANGED -REMOVED", or "NAME: TEXT" for errors.
class Reports {
public:
    void add(const std::string& report) {
        const std::lock_guard<std::mutex> lock(mutex);
        reports.push_back(report);
        changed.notify_all();
    }

    /// Waits, at most half a minute, until there are this many reports.
    /// @return all reports
    std::vector<std::string> atLeast(std::size_t count) {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait_for(lock, std::chrono::seconds(30), [&] { return reports.size() >= count; });
        return reports;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::string> reports;
};

std::string describe(const TableChange& change) {
    std::string text;
    for (const std::string& key : change.added)
        text += " +" + key;
    for (const std::string& key : change.changed)
        text += " ~" + key;
    for (const std::string& key : change.removed)
        text += " -" + key;
    return text;
}

} // namespace

class FileWatcherTest : public testing::Test {
protected:
    using Texts = std::vector<std::string>;

    /// @return a source for a file in the test's directory
    std::shared_ptr<FileSource> source(const std::string& name,
                                       IfMissing ifMissing = IfMissing::Throw) {
        return std::make_shared<FileSource>(directory.path / name, FileFormat::ByExtension,
                                            ifMissing);
    }

    void watch(std::vector<std::shared_ptr<FileSource>> sources,
               milliseconds settle = milliseconds(20)) {
        watcher.emplace(
            std::move(sources),
            [this](const std::shared_ptr<FileSource>& changed, const TableChange& change) {
                reports.add(changed->path().filename().string() + describe(change));
            },
            [this](const std::shared_ptr<FileSource>& failed, const FileError& error) {
                const std::string path = failed->path().parent_path().string() + '/';
                reports.add(std::string(error.what()).substr(path.size()));
            },
            settle);
    }

    /// Replaces a file atomically, as careful programs do.
    void replace(const std::string& name, const std::string& content) {
        fs::rename(directory.write(name + ".new", content), directory.path / name);
    }

    /// Causes a report, so that every earlier change has been reported once it arrives.
    void drain() { directory.write("end.json", "{\"end\": " + std::to_string(++drained) + "}"); }

    const TemporaryDirectory directory;
    Reports reports;
    int drained = 0;
    std::optional<FileWatcher> watcher;
};

TEST_F(FileWatcherTest, AFileThatIsWrittenIsReloaded) {
    directory.write("a.json", R"({"a": 1, "b": 2})");
    const auto a = source("a.json");
    watch({a});
    directory.write("a.json", R"({"a": 7, "c": 3})");
    EXPECT_EQ(Texts{"a.json +c ~a -b"}, reports.atLeast(1));
    EXPECT_EQ(OptionValue(7), a->get("a"));
}

/// Counts its reloads.
class CountingSource : public FileSource {
public:
    using FileSource::FileSource;

    TableChange reload() override {
        ++reloads;
        return FileSource::reload();
    }

    std::atomic<int> reloads{0};
};

TEST_F(FileWatcherTest, TheReloadOfADerivedClassIsCalledButNotByItsConstructor) {
    const auto a = std::make_shared<CountingSource>(directory.write("a.json", R"({"a": 1})"));
    EXPECT_EQ(0, a->reloads);
    watch({a});
    directory.write("a.json", R"({"a": 7})");
    EXPECT_EQ(Texts{"a.json ~a"}, reports.atLeast(1));
    EXPECT_LE(1, a->reloads);
}

TEST_F(FileWatcherTest, AFileThatIsReplacedIsReloadedEachTime) {
    directory.write("a.json", R"({"a": 0})");
    const auto a = source("a.json");
    watch({a}, milliseconds(1));
    for (int round = 1; round <= 20; ++round) {
        replace("a.json", "{\"a\": " + std::to_string(round) + "}");
        ASSERT_EQ("a.json ~a", reports.atLeast(round).back());
        ASSERT_EQ(OptionValue(round), a->get("a"));
    }
}

TEST_F(FileWatcherTest, AFileThatIsMadeAgainIsReloadedAndItsAbsenceToldOnce) {
    directory.write("a.json", R"({"a": 1})");
    directory.write("end.json", "{}");
    const auto a = source("a.json");
    watch({a, source("end.json")});
    for (int round = 2; round < 5; ++round) {
        const std::size_t before = reports.atLeast(0).size();
        fs::remove(directory.path / "a.json");
        EXPECT_EQ("a.json: The file could not be read: No such file or directory",
                  reports.atLeast(before + 1).back());
        EXPECT_TRUE(a->has("a"));
        directory.write("b.json", ""); // a change of another file in the directory
        drain();
        EXPECT_EQ("end.json", reports.atLeast(before + 2).back().substr(0, 8));
        directory.write("a.json", "{\"a\": " + std::to_string(round) + "}");
        EXPECT_EQ("a.json ~a", reports.atLeast(before + 3).back());
        EXPECT_EQ(before + 3, reports.atLeast(0).size());
    }
}

TEST_F(FileWatcherTest, AFileThatWasMissingFromTheStartIsNoErrorAndIsFound) {
    directory.write("end.json", "{}");
    const auto a = source("a.json", IfMissing::Empty);
    watch({a, source("end.json")});
    drain();
    EXPECT_EQ(Texts{"end.json +end"}, reports.atLeast(1));
    directory.write("a.json", R"({"a": 1})");
    EXPECT_EQ("a.json +a", reports.atLeast(2).back());
}

TEST_F(FileWatcherTest, ADirectoryThatWasMissingIsFoundStepByStep) {
    const auto a = source("x/y/a.json", IfMissing::Empty);
    watch({a}, milliseconds(1));
    fs::create_directories(directory.path / "x/y");
    directory.write("x/y/a.json", R"({"a": 1})");
    EXPECT_EQ(Texts{"a.json +a"}, reports.atLeast(1));
    fs::remove_all(directory.path / "x");
    EXPECT_EQ("a.json: The file could not be read: No such file or directory",
              reports.atLeast(2).back());
    fs::create_directories(directory.path / "x/y");
    directory.write("x/y/a.json", R"({"a": 2})");
    EXPECT_EQ("a.json ~a", reports.atLeast(3).back());
}

TEST_F(FileWatcherTest, ADirectoryOnTheWayThatIsReplacedIsNoticed) {
    fs::create_directories(directory.path / "old/sub");
    fs::create_directories(directory.path / "new/sub");
    directory.write("old/sub/a.json", R"({"a": 1})");
    directory.write("new/sub/a.json", R"({"a": 2})");
    const auto a = source("old/sub/a.json");
    watch({a});
    fs::rename(directory.path / "old", directory.path / "older");
    fs::rename(directory.path / "new", directory.path / "old");
    EXPECT_EQ(Texts{"a.json ~a"}, reports.atLeast(1));
    directory.write("old/sub/a.json", R"({"a": 3})");
    reports.atLeast(2);
    EXPECT_EQ(OptionValue(3), a->get("a"));
}

TEST_F(FileWatcherTest, TheSwitchOfALinkIsFollowedAsContainerPlatformsDoIt) {
    const auto publish = [this](int version) {
        const std::string name = "..version" + std::to_string(version);
        fs::create_directory(directory.path / name);
        directory.write(name + "/a.json", "{\"a\": " + std::to_string(version) + "}");
        fs::create_directory_symlink(name, directory.path / "..data_tmp");
        fs::rename(directory.path / "..data_tmp", directory.path / "..data");
        if (version > 1)
            fs::remove_all(directory.path / ("..version" + std::to_string(version - 1)));
    };
    publish(1);
    fs::create_symlink("..data/a.json", directory.path / "a.json");
    const auto a = source("a.json");
    watch({a}, milliseconds(5));
    for (int version = 2; version < 6; ++version) {
        publish(version);
        ASSERT_EQ("a.json ~a", reports.atLeast(version - 1).back());
        ASSERT_EQ(OptionValue(version), a->get("a"));
    }
    EXPECT_EQ(4u, reports.atLeast(0).size());
}

TEST_F(FileWatcherTest, AFileBehindALinkThatIsWrittenIsReloaded) {
    fs::create_directories(directory.path / "far");
    directory.write("far/b.json", R"({"a": 1})");
    fs::create_symlink(directory.path / "far/b.json", directory.path / "a.json");
    const auto a = source("a.json");
    watch({a});
    directory.write("far/b.json", R"({"a": 2})");
    EXPECT_EQ(Texts{"a.json ~a"}, reports.atLeast(1));
}

TEST_F(FileWatcherTest, ALoopOfLinksIsAFileThatIsGone) {
    directory.write("a.json", R"({"a": 1})");
    const auto a = source("a.json");
    watch({a});
    fs::create_symlink("a.json", directory.path / "link");
    fs::rename(directory.path / "link", directory.path / "a.json");
    EXPECT_EQ(1u, reports.atLeast(1).size());
    EXPECT_TRUE(a->has("a"));
    replace("a.json", R"({"a": 2})");
    EXPECT_EQ("a.json ~a", reports.atLeast(2).back());
}

TEST_F(FileWatcherTest, ABadFileIsToldAndTheNextGoodOneTaken) {
    directory.write("a.json", R"({"a": 1})");
    const auto a = source("a.json");
    watch({a});
    replace("a.json", R"({"a": )");
    EXPECT_EQ("a.json:1:7: Invalid JSON: unexpected end of input; expected '[', '{', or a literal",
              reports.atLeast(1).back());
    EXPECT_EQ(OptionValue(1), a->get("a"));
    replace("a.json", R"({"a": 2})");
    EXPECT_EQ("a.json ~a", reports.atLeast(2).back());
}

TEST_F(FileWatcherTest, ChangesThatFollowEachOtherAreOneReload) {
    directory.write("a.json", R"({"a": 0})");
    const auto a = source("a.json");
    watch({a}, milliseconds(300));
    for (int round = 1; round <= 20; ++round)
        replace("a.json", "{\"a\": " + std::to_string(round) + "}");
    EXPECT_EQ(Texts{"a.json ~a"}, reports.atLeast(1));
    EXPECT_EQ(OptionValue(20), a->get("a"));
}

TEST_F(FileWatcherTest, AFileThatIsNotClosedYetIsNotRead) {
    directory.write("a.json", R"({"a": 1})");
    directory.write("end.json", "{}");
    const auto a = source("a.json");
    watch({a, source("end.json")}, milliseconds(1));
    std::ofstream slow(directory.path / "a.json", std::ios_base::trunc);
    slow << "{\"a\":" << std::flush;
    drain();
    EXPECT_EQ(Texts{"end.json +end"}, reports.atLeast(1));
    slow << " 2}" << std::flush;
    slow.close();
    EXPECT_EQ("a.json ~a", reports.atLeast(2).back());
}

TEST_F(FileWatcherTest, AFileThatIsTouchedIsNoNews) {
    directory.write("a.json", R"({"a": 1})");
    directory.write("end.json", "{}");
    watch({source("a.json"), source("end.json")}, milliseconds(1));
    directory.write("a.json", R"({ "a" : 1 })");
    drain();
    EXPECT_EQ(Texts{"end.json +end"}, reports.atLeast(1));
}

TEST_F(FileWatcherTest, WhatChangedBeforeTheWatcherBeganIsTakenUp) {
    directory.write("a.json", R"({"a": 1})");
    directory.write("b.json", R"({"b": 1})");
    const auto a = source("a.json");
    const auto b = source("b.json", IfMissing::Empty);
    directory.write("a.json", R"({"a": 2})");
    fs::remove(directory.path / "b.json");
    watch({a, b});
    std::vector<std::string> told = reports.atLeast(2);
    std::sort(told.begin(), told.end());
    EXPECT_EQ((Texts{"a.json ~a", "b.json: The file could not be read: No such file or directory"}),
              told);
}

TEST_F(FileWatcherTest, AConfigurationsWatcherHearsOfTheChange) {
    directory.write("a.json", R"({"a": 1})");
    const auto a = source("a.json");
    const auto configuration = std::make_shared<ConfigurationImpl>();
    configuration->addSource("file", "g", 5, true, a).get();
    const Watched watched = test::watch(*configuration, "g.a");
    watch({a});
    replace("a.json", R"({"a": 2})");
    EXPECT_TRUE(watched.values->waitFor(2));
}

TEST_F(FileWatcherTest, ManyFilesAreFollowedByOneThread) {
    std::vector<std::shared_ptr<FileSource>> sources;
    for (int i = 0; i < 50; ++i) {
        const std::string name = "f" + std::to_string(i) + ".json";
        directory.write(name, "{}");
        sources.push_back(source(name));
    }
    watch(sources, milliseconds(1));
    for (int i = 0; i < 50; ++i)
        replace("f" + std::to_string(i) + ".json", "{\"a\": 1}");
    reports.atLeast(50);
    for (const auto& one : sources)
        EXPECT_TRUE(one->has("a"));
}

TEST_F(FileWatcherTest, ASourceThatIsNamedTwiceIsReloadedOnce) {
    directory.write("a.json", "{}");
    directory.write("end.json", "{}");
    const auto a = source("a.json");
    watch({a, a, source("end.json")}, milliseconds(1));
    directory.write("a.json", "{\"a\": 1}");
    reports.atLeast(1);
    drain();
    EXPECT_EQ((Texts{"a.json +a", "end.json +end"}), reports.atLeast(2));
}

TEST_F(FileWatcherTest, TheEndDoesNotWaitForChangesToSettle) {
    directory.write("a.json", "{}");
    watch({source("a.json")}, std::chrono::hours(1));
    directory.write("a.json", "{\"a\": 1}");
    const auto start = std::chrono::steady_clock::now();
    watcher.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(Texts{}, reports.atLeast(0));
}

TEST_F(FileWatcherTest, AFunctionMayDestroyTheWatcher) {
    directory.write("a.json", "{}");
    const auto a = source("a.json");
    auto owned = std::make_unique<std::unique_ptr<FileWatcher>>();
    *owned = std::make_unique<FileWatcher>(
        std::vector<std::shared_ptr<FileSource>>{a},
        [&](const std::shared_ptr<FileSource>&, const TableChange&) {
            owned->reset();
            reports.add("destroyed");
        },
        nullptr, milliseconds(1));
    directory.write("a.json", "{\"a\": 1}");
    EXPECT_EQ(Texts{"destroyed"}, reports.atLeast(1));
}

TEST_F(FileWatcherTest, WhatTheFunctionsAndWatchersThrowDoesNotEndIt) {
    directory.write("a.json", "{}");
    const auto a = source("a.json");
    a->setWatcher([&source = *a](const std::string& key) {
        if (key == "thrown" && source.has(key))
            throw std::range_error("from the watcher");
    });
    FileWatcher throwing(
        {a},
        [this](const std::shared_ptr<FileSource>&, const TableChange& change) {
            reports.add(describe(change));
            throw std::runtime_error("dropped");
        },
        [this](const std::shared_ptr<FileSource>&, const FileError& error) {
            reports.add(std::string(error.what()).substr(directory.path.string().size() + 1));
            throw 7;
        },
        milliseconds(1));
    replace("a.json", "{\"a\": 1}");
    EXPECT_EQ(" +a", reports.atLeast(1).back());
    replace("a.json", "{\"thrown\": 1}");
    EXPECT_EQ("a.json: from the watcher", reports.atLeast(2).back());
    replace("a.json", "{");
    EXPECT_EQ("a.json:1:2", reports.atLeast(3).back().substr(0, 10));
    replace("a.json", "{\"b\": 1}");
    EXPECT_EQ(" +b -thrown", reports.atLeast(4).back());
}

TEST_F(FileWatcherTest, ItNeedsNoFunctions) {
    directory.write("a.json", "{}");
    const auto a = source("a.json");
    const FileWatcher quiet({a}, {}, {}, milliseconds(1));
    replace("a.json", "{");
    replace("a.json", "{\"a\": 1}");
    for (const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
         !a->has("a") && std::chrono::steady_clock::now() < end;)
        std::this_thread::yield();
    EXPECT_TRUE(a->has("a"));
}

TEST_F(FileWatcherTest, ANullSourceIsRefused) {
    expectThrows<std::invalid_argument>("A source to watch is null",
                                        [] { FileWatcher watcher({nullptr}); });
}

TEST_F(FileWatcherTest, NoFilesAreNothingToDo) {
    watch({});
    watcher.reset();
}

TEST_F(FileWatcherTest, WatchersComeAndGoWhileFilesChange) {
    directory.write("a.json", "{}");
    const auto a = source("a.json");
    for (int round = 0; round < 50; ++round) {
        watch({a}, milliseconds(0));
        replace("a.json", "{\"a\": " + std::to_string(round) + "}");
    }
    watch({a}, milliseconds(0));
    replace("a.json", "{\"a\": -1}");
    for (const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
         !(a->has("a") && a->get("a") == OptionValue(-1)) &&
         std::chrono::steady_clock::now() < end;)
        std::this_thread::yield();
    EXPECT_EQ(OptionValue(-1), a->get("a"));
}

} // namespace test
