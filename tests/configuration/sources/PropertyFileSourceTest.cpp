/// Property files as files: opening, failing, closing.

#include "configuration/properties/parsing/Observation.hpp"
#include "support/Expect.hpp"
#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace test {

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using connector::configuration::PropertyFileSource;

namespace fs = std::filesystem;

using Texts = std::map<std::string, std::string>;

const std::string notOpened = "Property file could not be opened: ";

std::shared_ptr<PropertyFileSource> open(const fs::path& path) {
    return std::make_shared<PropertyFileSource>(path.u16string());
}

void expectNotOpened(const fs::path& path) {
    expectThrows<std::runtime_error>(notOpened + path.u8string(), [&] { open(path); });
}

/// @return how many files this process has open
std::ptrdiff_t openFiles() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

} // namespace

class PropertyFile : public testing::Test {
protected:
    const TemporaryDirectory directory;
};

TEST_F(PropertyFile, AFileIsRead) {
    const auto source = open(directory.write("a.properties", "# c\na=b\nnet.port : 80\nlast=x"));
    EXPECT_EQ((Texts{{"a", "b"}, {"net.port", "80"}, {"last", "x"}}), optionsOf(*source));
}

TEST_F(PropertyFile, AnEmptyFileGivesASourceWithoutKeys) {
    const auto source = open(directory.write("empty", ""));
    EXPECT_EQ(std::set<std::string>(), source->keys());
}

TEST_F(PropertyFile, CarriageReturnsReachTheParser) {
    const auto source = open(directory.write("crlf", "a=b\r\nc=d\re\\\r=f\r\n"));
    EXPECT_EQ((Texts{{"a", "b"}, {"c", "d"}, {"e\r", "f"}}), optionsOf(*source));
}

TEST_F(PropertyFile, AnEndOfFileCharacterDoesNotEndAFile) {
    const auto source = open(directory.write("ctrl-z", "a=\x1A\nb=c\n"));
    EXPECT_EQ((Texts{{"a", "\x1A"}, {"b", "c"}}), optionsOf(*source));
}

TEST_F(PropertyFile, AFileMuchLargerThanAnyBufferIsRead) {
    Texts expected;
    std::string content;
    for (int i = 0; i < 40000; ++i) {
        const std::string key = "some.group.key" + std::to_string(i);
        expected[key] = "value " + std::to_string(i) + std::string(i % 97, 'x');
        content += key + " = " + expected[key] + "\r\n";
    }
    EXPECT_EQ(expected, optionsOf(*open(directory.write("large", content))));
}

TEST_F(PropertyFile, BinaryContentIsNotAnError) {
    std::string content;
    for (int i = 0; i < 70000; ++i)
        content += static_cast<char>(i * 7919 >> 4);
    EXPECT_NO_THROW(open(directory.write("binary", content)));
}

TEST_F(PropertyFile, AllValuesAreEightBitStrings) {
    const auto source = open(directory.write("types", "a=true\nb=5\nc=1.5\nd=[1]\n"));
    for (const std::string& key : source->keys())
        EXPECT_EQ(5, source->get(key).which()) << key;
}

TEST_F(PropertyFile, ANonAsciiPathIsOpened) {
    const fs::path path = directory.path / fs::u8path(u8"gr\u00f6\u00dfe \u20ac \U0001F600");
    directory.write(path.filename(), "a=b\n");
    EXPECT_EQ((Texts{{"a", "b"}}), optionsOf(*open(path)));
}

TEST_F(PropertyFile, ASymbolicLinkIsFollowed) {
    fs::create_symlink(directory.write("target", "a=b\n"), directory.path / "link");
    EXPECT_EQ((Texts{{"a", "b"}}), optionsOf(*open(directory.path / "link")));
}

TEST_F(PropertyFile, ARelativePathIsResolvedInTheCurrentDirectory) {
    const fs::path path = directory.write("relative", "a=b\n");
    EXPECT_EQ((Texts{{"a", "b"}}), optionsOf(*open(fs::relative(path))));
}

TEST_F(PropertyFile, AMissingFileIsNotOpened) {
    expectNotOpened(directory.path / "missing.properties");
}

TEST_F(PropertyFile, AMissingNonAsciiPathIsNamedInUtf8) {
    const fs::path path = directory.path / fs::u8path(u8"\u00e9\u20ac\U0001F600");
    expectThrows<std::runtime_error>(notOpened + directory.path.string() +
                                         "/\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
                                     [&] { open(path); });
}

TEST_F(PropertyFile, APathIsNamedAsItWasGiven) {
    expectThrows<std::runtime_error>(notOpened + "./missing/../no//such file",
                                     [] { PropertyFileSource(u"./missing/../no//such file"); });
}

TEST_F(PropertyFile, TheEmptyPathIsNotOpened) {
    expectThrows<std::runtime_error>(notOpened, [] { PropertyFileSource(u""); });
}

TEST_F(PropertyFile, ADirectoryIsNotOpened) {
    expectNotOpened(directory.path);
}

TEST_F(PropertyFile, ADirectoryWithASlashIsNotOpened) {
    expectNotOpened(directory.path / "");
}

TEST_F(PropertyFile, ALinkToADirectoryIsNotOpened) {
    fs::create_directory_symlink(directory.path, directory.path / "link");
    expectNotOpened(directory.path / "link");
}

TEST_F(PropertyFile, AFileInAMissingDirectoryIsNotOpened) {
    expectNotOpened(directory.path / "missing" / "a.properties");
}

TEST_F(PropertyFile, AFileUnderAFileIsNotOpened) {
    expectNotOpened(directory.write("file", "a=b\n") / "a.properties");
}

TEST_F(PropertyFile, ADanglingLinkIsNotOpened) {
    fs::create_symlink(directory.path / "missing", directory.path / "link");
    expectNotOpened(directory.path / "link");
}

TEST_F(PropertyFile, ALinkToItselfIsNotOpened) {
    fs::create_symlink(directory.path / "link", directory.path / "link");
    expectNotOpened(directory.path / "link");
}

TEST_F(PropertyFile, ANameThatIsTooLongIsNotOpened) {
    expectNotOpened(directory.path / std::string(5000, 'x'));
}

TEST_F(PropertyFile, APathWithNulIsNotOpenedAlthoughItsBeginningNamesAFile) {
    const std::string path = directory.write("file", "a=b\n").string();
    const std::string withNul = path + std::string("\0.properties", 12);
    try {
        PropertyFileSource(fs::u8path(withNul).u16string());
        FAIL() << "was opened";
    } catch (const std::runtime_error& thrown) {
        EXPECT_EQ(notOpened + path, thrown.what()); // what() ends at the NUL
    }
}

TEST_F(PropertyFile, APathThatIsNotUtf16IsRefused) {
    for (const std::u16string& path : {std::u16string(1, 0xD800), std::u16string(1, 0xDC00),
                                       u"/tmp/" + std::u16string(1, 0xDBFF) + u"x"}) {
        expectThrows<std::runtime_error>("Text is not valid UTF-16",
                                         [&] { const PropertyFileSource source(path); });
    }
}

TEST_F(PropertyFile, AReadErrorInTheFileIsNotAFailure) {
    // This file can be opened, but the first read fails.
    PropertyFileSource source(u"/proc/self/mem");
    EXPECT_EQ(std::set<std::string>(), source.keys());
}

TEST_F(PropertyFile, AFileThatIsNotOpenedLeavesNothingRegistered) {
    const auto configuration = std::make_shared<ConfigurationImpl>();
    const fs::path path = directory.path / "late.properties";
    expectThrows<std::runtime_error>(notOpened + path.string(), [&] {
        configuration->addPropertyFileSource("file", "", 1, true, path.u16string()).get();
    });
    EXPECT_FALSE(configuration->removeSource("file").get());
    directory.write("late.properties", "a=b\n");
    EXPECT_TRUE(configuration->addPropertyFileSource("file", "", 1, true, path.u16string()).get());
    EXPECT_EQ("b", boost::get<std::string>(configuration->get("a").get()));
}

TEST_F(PropertyFile, TheFileIsClosedAfterConstruction) {
    const fs::path path = directory.write("file", "a=b\n");
    const std::ptrdiff_t before = openFiles();
    const auto source = open(path);
    EXPECT_EQ(before, openFiles());
}

TEST_F(PropertyFile, NoFileStaysOpenAfterAFailure) {
    const std::ptrdiff_t before = openFiles();
    EXPECT_ANY_THROW(open(directory.path / "missing"));
    EXPECT_ANY_THROW(open(directory.path));
    EXPECT_EQ(before, openFiles());
}

TEST_F(PropertyFile, TheFileIsNeverReadAgain) {
    const fs::path path = directory.write("file", "a=b\n");
    const auto source = open(path);
    directory.write("file", "a=changed\nc=d\n");
    EXPECT_EQ((Texts{{"a", "b"}}), optionsOf(*source));
    fs::remove(path);
    EXPECT_EQ((Texts{{"a", "b"}}), optionsOf(*source));
}

TEST_F(PropertyFile, TheFileIsNotWritten) {
    const fs::path path = directory.write("file", "a=b");
    const auto source = open(path);
    EXPECT_ANY_THROW(source->set("a", std::string("c")));
    std::ifstream stream(path);
    EXPECT_EQ("a=b", std::string(std::istreambuf_iterator<char>(stream), {}));
}

TEST_F(PropertyFile, AWatcherSetAfterConstructionIsNotCalledForTheFile) {
    const auto source = open(directory.write("file", "a=b\n"));
    int calls = 0;
    source->setWatcher([&](const std::string&) { ++calls; });
    source->get("a");
    EXPECT_EQ(0, calls);
}

TEST_F(PropertyFile, SetIsRefusedForANewKey) {
    const auto source = makeEmptyPropertyFileSource();
    expectThrows<std::runtime_error>("PropertyFileSource does not support writing",
                                     [&] { source->set("a", 1); });
    EXPECT_FALSE(source->has("a"));
}

TEST_F(PropertyFile, SetIsRefusedForAKeyThatExistsAndChangesNothing) {
    const auto source = open(directory.write("file", "a=b\n"));
    source->setWatcher([](const std::string&) { ADD_FAILURE() << "watched"; });
    expectThrows<std::runtime_error>("PropertyFileSource does not support writing",
                                     [&] { source->set("a", std::string("c")); });
    EXPECT_EQ((Texts{{"a", "b"}}), optionsOf(*source));
}

} // namespace test
