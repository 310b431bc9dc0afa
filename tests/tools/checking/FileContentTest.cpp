/// The replacement of files.
#include "checking/FileContent.hpp"

#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <sys/resource.h>

namespace {

using connector_config::readFile;
using connector_config::replaceFile;
using test::TemporaryDirectory;

/// While it lives, writing more than so many bytes to a file fails.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t bytes) : previousHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &previous);
        const rlimit limit{bytes, previous.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &previous);
        std::signal(SIGXFSZ, previousHandler);
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;

private:
    rlimit previous{};
    void (*const previousHandler)(int);
};

std::size_t filesIn(const TemporaryDirectory& directory) {
    const std::filesystem::directory_iterator files(directory.path);
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

TEST(FileContent, IsReplaced) {
    const TemporaryDirectory directory;
    const std::string path = directory.write("a", std::string("old\0", 4));
    replaceFile(path, readFile(path), std::string(100'000, 'x'));
    EXPECT_EQ(std::string(100'000, 'x'), readFile(path));
    EXPECT_EQ(1u, filesIn(directory));
}

TEST(FileContent, StaysIfItCannotBeWrittenWhole) {
    const TemporaryDirectory directory;
    const std::string path = directory.write("a", "old");
    {
        const SizeLimit limit(10);
        EXPECT_THROW(replaceFile(path, "old", std::string(100'000, 'x')), std::system_error);
    }
    EXPECT_EQ("old", readFile(path));
    EXPECT_EQ(1u, filesIn(directory));
}

TEST(FileContent, StaysIfItHasChangedInTheMeantime) {
    const TemporaryDirectory directory;
    const std::string path = directory.write("a", "newer");
    try {
        replaceFile(path, "old", "new");
        FAIL() << "it was replaced";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ("File could not be written: " + path + ": it was changed in the meantime",
                  std::string(error.what()));
    }
    EXPECT_EQ("newer", readFile(path));
    EXPECT_EQ(1u, filesIn(directory));
}

TEST(FileContent, AMissingFileIsAnError) {
    EXPECT_THROW(readFile("/nonexistent/file"), std::system_error);
    EXPECT_THROW(replaceFile("/nonexistent/file", "", "new"), std::system_error);
}

} // namespace
