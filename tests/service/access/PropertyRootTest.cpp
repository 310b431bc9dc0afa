#include <connector/service/access/PropertyRoot.hpp>

#include "support/Expect.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using connector::service::PropertyRoot;
namespace fs = std::filesystem;

/// A root with two files, and files outside it that must not be found.
class PropertyRootTest : public testing::Test {
protected:
    PropertyRootTest() {
        fs::create_directories(base.path / "root/folder");
        fs::create_directories(base.path / "root-of-others");
        inside = base.write("root/a.properties", "inside");
        base.write("root/folder/b.properties", "b");
        outside = base.write("root-of-others/c.properties", "outside");
        base.write("d.properties", "outside");
    }

    bool finds(const fs::path& path) const { return root().find(path.string()) != nullptr; }
    PropertyRoot root() const { return PropertyRoot((base.path / "root").string()); }

    const test::TemporaryDirectory base;
    fs::path inside;
    fs::path outside;
};

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(PropertyRootTest, FindsFilesBelowTheRoot) {
    EXPECT_TRUE(finds(inside));
    EXPECT_TRUE(finds(base.path / "root/folder/b.properties"));
    EXPECT_TRUE(finds(base.path / "root/folder/../a.properties"));
    EXPECT_TRUE(finds(base.path / "root-of-others/../root/./a.properties"));
}

TEST_F(PropertyRootTest, RejectsFilesOutsideTheRoot) {
    EXPECT_FALSE(finds(outside)); // the path begins with the root's path
    EXPECT_FALSE(finds(base.path / "root/../d.properties"));
    EXPECT_FALSE(finds(base.path / "root/folder/../../root-of-others/c.properties"));
    EXPECT_FALSE(finds("/etc/passwd"));
}

TEST_F(PropertyRootTest, RejectsEverythingButRegularFiles) {
    EXPECT_FALSE(finds(base.path / "root"));
    EXPECT_FALSE(finds(base.path / "root/folder"));
    EXPECT_FALSE(finds(base.path / "root/none"));
    EXPECT_FALSE(finds(base.path / "root/a.properties/x"));
    EXPECT_FALSE(finds(""));
    EXPECT_FALSE(finds(std::string(100000, 'x')));
    EXPECT_FALSE(finds("/dev/null"));
}

TEST_F(PropertyRootTest, RejectsUnreadableFiles) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "The superuser can read everything";
    fs::permissions(inside, fs::perms::none);
    EXPECT_FALSE(finds(inside));
}

TEST_F(PropertyRootTest, ResolvesRelativePathsInTheWorkingDirectory) {
    EXPECT_TRUE(finds(fs::relative(inside)));
    EXPECT_FALSE(finds(fs::relative(outside)));
    EXPECT_FALSE(finds("a.properties"));
}

TEST_F(PropertyRootTest, RejectsAPipeWithoutBlocking) {
    const fs::path pipe = base.path / "root/pipe";
    ASSERT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
    EXPECT_FALSE(finds(pipe));
    fs::create_symlink(pipe, base.path / "root/link");
    EXPECT_FALSE(finds(base.path / "root/link"));
}

TEST_F(PropertyRootTest, FollowsLinks) {
    fs::create_symlink(outside, base.path / "root/out");
    fs::create_symlink(inside, base.path / "root/in");
    fs::create_symlink(base.path / "root-of-others", base.path / "root/others");
    fs::create_symlink(base.path / "root", base.path / "way-in");
    fs::create_symlink("loop", base.path / "root/loop");
    EXPECT_FALSE(finds(base.path / "root/out"));
    EXPECT_TRUE(finds(base.path / "root/in"));
    EXPECT_FALSE(finds(base.path / "root/others/c.properties"));
    EXPECT_TRUE(finds(base.path / "way-in/a.properties"));
    EXPECT_FALSE(finds(base.path / "root/loop"));
}

TEST_F(PropertyRootTest, MayItselfBeALink) {
    fs::create_symlink(base.path / "root", base.path / "way-in");
    const PropertyRoot linked((base.path / "way-in").string());
    EXPECT_NE(nullptr, linked.find(inside.string()));
    EXPECT_EQ(nullptr, linked.find(outside.string()));
}

TEST_F(PropertyRootTest, RejectsPathsWithANulCharacter) {
    EXPECT_EQ(nullptr, root().find(inside.string() + std::string(1, '\0')));
    EXPECT_EQ(nullptr, root().find(inside.string() + std::string("\0.properties", 12)));
}

TEST_F(PropertyRootTest, AFileStaysTheSameWhenItsNameIsReused) {
    const auto file = root().find(inside.string());
    ASSERT_NE(nullptr, file);
    fs::remove(inside);
    fs::create_symlink(outside, inside);
    EXPECT_EQ("inside", contentOf(file->path()));
}

TEST_F(PropertyRootTest, MustBeADirectory) {
    for (const std::string& path : {inside.string(), (base.path / "none").string(), std::string()})
        test::expectThrows<std::runtime_error>("Not a directory: " + path,
                                               [&path] { PropertyRoot{path}; });
}

TEST(PropertyRootSlash, ContainsEveryFile) {
    const test::TemporaryDirectory base;
    EXPECT_NE(nullptr, PropertyRoot("/").find(base.write("a", "").string()));
}

} // namespace
