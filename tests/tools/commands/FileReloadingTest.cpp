#include "commands/FileReloading.hpp"

#include "tools/support/Reloading.hpp"

#include <gtest/gtest.h>

#include <condition_variable>

namespace {

using connector_config::FileReloading;
using connector_config::NamedFile;
using connector_config::NamedFiles;
using connector_config::openFile;
using connector_config::ReloadResult;

class FileReloadingTest : public test::ReloadedFiles {
protected:
    using Results = std::vector<ReloadResult>;

    std::shared_ptr<NamedFile> open(const std::string& name, const std::string& content) const {
        return openFile(connector_config::parseFileArgument(write(name, content)));
    }

    void start(const NamedFiles& files, bool follows) {
        reloading.emplace(files, follows, [this](ReloadResult result) {
            const std::lock_guard<std::mutex> lock(mutex);
            results.push_back(result);
            changed.notify_all();
        });
    }

    /// Waits, at most half a minute, until there are this many results.
    Results atLeast(std::size_t count) {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait_for(lock, std::chrono::seconds(30), [&] { return results.size() >= count; });
        return results;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    Results results;

protected:
    std::optional<FileReloading> reloading;
};

TEST_F(FileReloadingTest, TellsTheResultOfEachReload) {
    start({open("f.json", R"({"k": 1})"), open("g.json", R"({"k": 1})")}, false);
    reloading->reloadAll();
    EXPECT_EQ((Results{ReloadResult::Succeeded, ReloadResult::Succeeded}), atLeast(2));
    write("f.json", "");
    reloading->reloadAll();
    EXPECT_EQ((Results{ReloadResult::Succeeded, ReloadResult::Succeeded, ReloadResult::Failed,
                       ReloadResult::Succeeded}),
              atLeast(4));
}

TEST_F(FileReloadingTest, TellsTheResultsOfFollowedFiles) {
    const auto f = open("f.json", R"({"k": 1})");
    start({f}, true);
    write("f.json", R"({"k": 2})");
    EXPECT_EQ((Results{ReloadResult::Succeeded}), atLeast(1));
    EXPECT_EQ(2, boost::get<int>(f->get("k")));
    write("f.json", "");
    EXPECT_EQ((Results{ReloadResult::Succeeded, ReloadResult::Failed}), atLeast(2));
}

TEST_F(FileReloadingTest, ReloadsFromSeveralThreadsWhileFilesAreAddedAndRemoved) {
    start({open("f", "k=1\n")}, true);
    std::thread other([this] {
        for (int i = 0; i < 100; ++i)
            reloading->reloadAll();
    });
    const auto g = open("g", "k=1\n");
    for (int i = 0; i < 100; ++i) {
        reloading->add(g);
        reloading->reloadAll();
        reloading->remove("g");
    }
    other.join();
    EXPECT_LE(300u, atLeast(300).size());
}

} // namespace
