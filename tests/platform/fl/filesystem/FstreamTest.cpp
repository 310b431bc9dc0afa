/// File streams that open native paths.

#include "support/Expect.hpp"
#include "support/TemporaryDirectory.hpp"

#include <fl/filesystem/fstream.hpp>

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <type_traits>

namespace test {

namespace {

using fl::filesystem::ifstream;
using fl::filesystem::detail::make_native_access_form_with_cleanup_i18n;

constexpr auto binary = std::ios_base::in | std::ios_base::binary;

std::string rest(std::istream& stream) {
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

void expectNotOpen(const std::string& path) {
    const ifstream stream(path, binary);
    EXPECT_FALSE(stream.is_open()) << path;
    EXPECT_EQ(std::ios_base::failbit, stream.rdstate()) << path;
}

} // namespace

class Fstream : public testing::Test {
protected:
    const TemporaryDirectory directory;
    const std::string file = directory.write("file", "first\nsecond").string();
};

TEST_F(Fstream, AFileIsOpenedByTheConstructor) {
    ifstream stream(file, binary);
    EXPECT_TRUE(stream.is_open());
    EXPECT_TRUE(stream.good());
    EXPECT_EQ("first\nsecond", rest(stream));
}

TEST_F(Fstream, AFileIsOpenedForReadingByDefault) {
    ifstream stream(file);
    std::string line;
    EXPECT_TRUE(std::getline(stream, line));
    EXPECT_EQ("first", line);
}

TEST_F(Fstream, AFileIsOpenedForReadingInEveryMode) {
    ifstream stream(file, std::ios_base::binary);
    EXPECT_TRUE(stream.is_open());
    EXPECT_EQ("first\nsecond", rest(stream));
}

TEST_F(Fstream, IsAnInputStreamOfTheStandardLibrary) {
    EXPECT_TRUE((std::is_base_of_v<std::istream, ifstream>));
    EXPECT_TRUE((std::is_same_v<fl::filesystem::basic_ifstream<char>, ifstream>));
}

TEST_F(Fstream, BinaryModeKeepsEveryByte) {
    std::string bytes;
    for (int i = 0; i < 512; ++i)
        bytes += static_cast<char>(i);
    bytes += "\r\n\n\r\x1A after";
    ifstream stream(directory.write("bytes", bytes).string(), binary);
    EXPECT_EQ(bytes, rest(stream));
}

TEST_F(Fstream, AnEmptyFileIsOpened) {
    ifstream stream(directory.write("empty", "").string(), binary);
    EXPECT_TRUE(stream.is_open());
    EXPECT_EQ(std::char_traits<char>::eof(), stream.get());
}

TEST_F(Fstream, AStreamReportsAndSeeksItsPosition) {
    ifstream stream(file, binary);
    stream.ignore(6);
    EXPECT_EQ(6, stream.tellg());
    EXPECT_EQ("second", rest(stream));
    stream.clear();
    stream.seekg(1);
    EXPECT_EQ("irst\nsecond", rest(stream));
}

TEST_F(Fstream, AClosedStreamIsNotOpen) {
    ifstream stream(file, binary);
    stream.close();
    EXPECT_FALSE(stream.is_open());
    EXPECT_TRUE(stream.good());
}

TEST_F(Fstream, ClosingTwiceSetsTheFailBit) {
    ifstream stream(file, binary);
    stream.close();
    stream.close();
    EXPECT_EQ(std::ios_base::failbit, stream.rdstate());
}

TEST_F(Fstream, AClosedStreamMayOpenAnotherFile) {
    ifstream stream(file, binary);
    rest(stream);
    stream.close();
    stream.open(directory.write("other", "other").string(), binary);
    EXPECT_TRUE(stream.is_open());
    EXPECT_TRUE(stream.good());
    EXPECT_EQ("other", rest(stream));
}

TEST_F(Fstream, OpeningAnOpenStreamSetsTheFailBitAndKeepsTheFile) {
    ifstream stream(file, binary);
    stream.open(file, binary);
    EXPECT_TRUE(stream.is_open());
    EXPECT_EQ(std::ios_base::failbit, stream.rdstate());
    stream.clear();
    EXPECT_EQ("first\nsecond", rest(stream));
}

TEST_F(Fstream, OpeningClearsAnEarlierFailure) {
    ifstream stream(directory.path / "missing", binary);
    EXPECT_TRUE(stream.fail());
    stream.open(file, binary);
    EXPECT_TRUE(stream.good());
    EXPECT_TRUE(stream.is_open());
}

TEST_F(Fstream, AMissingFileIsNotOpened) {
    expectNotOpen(directory.path / "missing");
}

TEST_F(Fstream, AMissingFileIsNotCreated) {
    expectNotOpen(directory.path / "missing");
    EXPECT_FALSE(std::filesystem::exists(directory.path / "missing"));
}

TEST_F(Fstream, TheEmptyPathIsNotOpened) {
    expectNotOpen("");
}

TEST_F(Fstream, ADirectoryIsNotOpened) {
    expectNotOpen(directory.path);
    expectNotOpen(directory.path / "");
    expectNotOpen("/");
    expectNotOpen(".");
}

TEST_F(Fstream, ALinkToADirectoryIsNotOpened) {
    std::filesystem::create_directory_symlink(directory.path, directory.path / "link");
    expectNotOpen(directory.path / "link");
}

TEST_F(Fstream, APathWithNulIsNotOpenedAlthoughItsBeginningNamesAFile) {
    expectNotOpen(file + std::string("\0", 1));
    expectNotOpen(file + std::string("\0.txt", 5));
    expectNotOpen(std::string("\0", 1) + file);
}

TEST_F(Fstream, AFileUnderAFileIsNotOpened) {
    expectNotOpen(file + "/below");
}

TEST_F(Fstream, ANameThatIsTooLongIsNotOpened) {
    expectNotOpen(directory.path / std::string(5000, 'x'));
}

TEST_F(Fstream, ANonAsciiPathIsOpenedInItsNativeForm) {
    const std::u16string name = u"gr\u00F6\u00DFe \u20AC \U0001F600";
    directory.write(std::filesystem::path(name), "content");
    ifstream stream(make_native_access_form_with_cleanup_i18n(
                        (directory.path / std::filesystem::path(name)).u16string()),
                    binary);
    EXPECT_EQ("content", rest(stream));
}

TEST(NativePath, IsThePathInUtf8) {
    EXPECT_EQ("/tmp/\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
              make_native_access_form_with_cleanup_i18n(u"/tmp/\u00E9\u20AC\U0001F600"));
    EXPECT_EQ("", make_native_access_form_with_cleanup_i18n(u""));
}

TEST(NativePath, KeepsEveryCharacterOfThePath) {
    const std::string path = "./a/../b//c\\d~ e /";
    EXPECT_EQ(path, make_native_access_form_with_cleanup_i18n({path.begin(), path.end()}));
    EXPECT_EQ(std::string("a\0b", 3),
              make_native_access_form_with_cleanup_i18n(std::u16string(u"a\0b", 3)));
}

TEST(NativePath, RefusesInvalidUtf16) {
    expectThrows<std::runtime_error>("Text is not valid UTF-16", [] {
        make_native_access_form_with_cleanup_i18n(std::u16string(1, 0xD800));
    });
}

} // namespace test
