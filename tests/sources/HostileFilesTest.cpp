/// Files that are crafted to break a reader.
#include "sources/Shown.hpp"
#include "support/TemporaryDirectory.hpp"

#include <connector/sources/FileSource.hpp>

#include <gtest/gtest.h>

#include <ctime>
#include <fstream>
#include <string>

namespace test {

namespace {

using connector::sources::FileError;
using connector::sources::FileFormat;
using connector::sources::FileSource;

std::string repeated(const std::string& text, std::size_t times) {
    std::string result;
    result.reserve(text.size() * times);
    while (times-- > 0)
        result += text;
    return result;
}

/// @return the peak memory use of this process, in bytes; 0 if it is not known
std::size_t peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0)
            return std::stoul(line.substr(6)) * 1024;
    }
    return 0;
}

/// @return the processor time of this process, in seconds
double processorTime() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

} // namespace

class HostileFilesTest : public testing::Test {
protected:
    /// @return "" if the file is read, else the error, without the path
    std::string read(FileFormat format, const std::string& text) {
        const auto path = directory.write("hostile", text);
        try {
            entries = FileSource(path, format).table()->size();
            return "";
        } catch (const FileError& error) {
            return std::string(error.what()).substr(path.string().size() + 1);
        }
    }

    std::string json(const std::string& text) { return read(FileFormat::Json, text); }
    std::string yaml(const std::string& text) { return read(FileFormat::Yaml, text); }
    std::string toml(const std::string& text) { return read(FileFormat::Toml, text); }

    const TemporaryDirectory directory;
    std::size_t entries = 0;
};

TEST_F(HostileFilesTest, SixtyFourLevelsAreTheLimit) {
    const auto arrays = [](int count) { return repeated("[", count) + "1" + repeated("]", count); };
    EXPECT_EQ("", json("{\"a\":" + arrays(63) + "}"));
    EXPECT_EQ("1:69: Nested deeper than 64", json("{\"a\":" + arrays(64) + "}"));
    EXPECT_EQ("", yaml("a: " + arrays(63)));
    EXPECT_EQ("1:67: Nested deeper than 64", yaml("a: " + arrays(64)));
    EXPECT_EQ("", toml("a = " + arrays(63)));
    EXPECT_EQ("1:68: Nested deeper than 64", toml("a = " + arrays(64)));
    const auto objects = [](int count) {
        return repeated("{\"a\":", count) + "1" + repeated("}", count);
    };
    EXPECT_EQ("", json(objects(64)));
    EXPECT_EQ("1:321: Nested deeper than 64", json(objects(65)));
    EXPECT_EQ("", toml(repeated("a.", 63) + "a = 1"));
    EXPECT_NE("", toml(repeated("a.", 64) + "a = 1"));
}

TEST_F(HostileFilesTest, AnAliasCountsWhereItStands) {
    std::string chain = "a0: &a0 [1]\n";
    for (int i = 1; i <= 62; ++i)
        chain += "a" + std::to_string(i) + ": &a" + std::to_string(i) + " [*a" +
                 std::to_string(i - 1) + "]\n";
    EXPECT_EQ("", yaml(chain));
    EXPECT_EQ("64:5: Nested deeper than 64", yaml(chain + "x: [*a62]\n"));
}

TEST_F(HostileFilesTest, MergesAddNoDepth) {
    std::string chain = "a0: &a0 {k0: 1}\n";
    for (int i = 1; i <= 200; ++i) {
        const std::string number = std::to_string(i);
        chain += "a" + number + ": &a" + number + " {<<: *a" + std::to_string(i - 1) + ", k" +
                 number + ": 1}\n";
    }
    EXPECT_EQ("", yaml(chain));
    EXPECT_EQ(201u * 202 / 2, entries);
}

TEST_F(HostileFilesTest, DeepNestingIsRefusedAtOnce) {
    const std::size_t many = 2'000'000;
    EXPECT_EQ("1:70: Nested deeper than 64", json("{\"a\": " + repeated("[", many)));
    EXPECT_NE("", yaml("a: " + repeated("[", many)));
    EXPECT_EQ("1:129: Nested deeper than 64", yaml(repeated("- ", many)));
    EXPECT_NE("", yaml(repeated("? ", many)));
    EXPECT_NE("", yaml(repeated("{", many)));
    EXPECT_NE("", toml("a = " + repeated("[", many)));
    EXPECT_NE("", toml(repeated("a.", many) + "a = 1"));
    EXPECT_NE("", toml("[" + repeated("a.", many) + "a]"));
    EXPECT_NE("", toml("a = " + repeated("{a.a.a.a.a.a.a.a.a.a = ", many / 100)));
}

TEST_F(HostileFilesTest, AMillionValuesAreTheLimit) {
    const auto array = [](std::size_t count) { return "[" + repeated("1,", count - 1) + "1]"; };
    EXPECT_EQ("", json("{\"a\":" + array(1'000'000) + "}"));
    EXPECT_EQ("1:2000007: More than 1000000 values", json("{\"a\":" + array(1'000'001) + "}"));
    EXPECT_EQ("", toml("a = " + array(1'000'000)));
    EXPECT_EQ("1:2000006: More than 1000000 values", toml("a = " + array(1'000'001)));
    EXPECT_NE("", json("{\"a\":[" + repeated("[],", 1'000'001) + "1]}"));
}

TEST_F(HostileFilesTest, AliasesThatMultiplyAreRefusedAtOnce) {
    std::string laughs = "a0: &a0 [lol, lol, lol, lol, lol, lol, lol, lol, lol, lol]\n";
    for (int i = 1; i < 30; ++i) {
        const std::string before = "*a" + std::to_string(i - 1);
        laughs += "a" + std::to_string(i) + ": &a" + std::to_string(i) + " [" +
                  repeated(before + ", ", 9) + before + "]\n";
    }
    const std::size_t memory = peakMemory();
    const double start = processorTime();
    const std::string error = yaml(laughs);
    EXPECT_LT(processorTime() - start, 0.1 * SLOWNESS);
    EXPECT_EQ("6:5: More than 1000000 values", error);
    EXPECT_LE(peakMemory() - memory, 100u << 20);
}

TEST_F(HostileFilesTest, MergesThatMultiplyAreRefused) {
    std::string wide = "a: &a {";
    for (int i = 0; i < 10'000; ++i)
        wide += "k" + std::to_string(i) + ": 1, ";
    wide += "}\nb: {<<: [" + repeated("*a, ", 200) + "]}\n";
    EXPECT_NE("", yaml(wide));
}

TEST_F(HostileFilesTest, SixtyFourMebibytesAreTheLimit) {
    const std::size_t limit = 64u << 20;
    const std::string empty = "{}";
    EXPECT_EQ("", json(empty + std::string(limit - empty.size(), ' ')));
    EXPECT_EQ(" The file is larger than 64 MiB",
              json(empty + std::string(limit - empty.size() + 1, ' ')));
    EXPECT_EQ("", read(FileFormat::Properties, std::string(limit + 1, '#')));
}

TEST_F(HostileFilesTest, TextThatIsNoUtf8IsRefusedWhereverItStands) {
    const std::string wrong[] = {
        "\xFF",         "\xC3",         "\xC0\x80",         "\x80",
        "\xED\xA0\x80", "\xE0\x80\x80", "\xF4\x90\x80\x80", "\xF0\x80\x80\x80",
        "\xE2\x82"};
    for (const std::string& bytes : wrong) {
        EXPECT_EQ("2:7: The text is not valid UTF-8",
                  json("{\n\"a\": \"" + bytes + "\"}").substr(0, 32));
        EXPECT_EQ("2:3: The text is not valid UTF-8", yaml("a: 1\n# " + bytes + "\n"));
        EXPECT_EQ("2:3: The text is not valid UTF-8", toml("a = 1\n# " + bytes + "\n"));
    }
}

TEST_F(HostileFilesTest, AByteOrderMarkCountsOnceAndAtTheStartOnly) {
    const std::string mark = "\xEF\xBB\xBF";
    EXPECT_EQ("", json(mark + "{}"));
    EXPECT_EQ("1:1: A second byte order mark", json(mark + mark + "{}"));
    EXPECT_EQ("1:1: A second byte order mark", yaml(mark + mark + "a: 1"));
    EXPECT_NE("", json("{" + mark + "}"));
    EXPECT_NE("", read(FileFormat::Json, std::string("\xFF\xFE{\0}\0", 6))); // UTF-16
}

TEST_F(HostileFilesTest, ATopThatIsAStringIsRefused) {
    EXPECT_EQ("1:1: The top of the document is no object", json("\"a\""));
    EXPECT_EQ("1:1: The top of the document is no object", json("\"\""));
    EXPECT_NE("", json("\"\\\"\""));
}

TEST_F(HostileFilesTest, ControlCharactersAreRefused) {
    EXPECT_NE("", json(std::string("{\"a\": \"\x01\"}")));
    EXPECT_NE("", json(std::string("{\"a\": 1}\0", 9)));
    EXPECT_EQ("1:4: Invalid YAML: control character", yaml(std::string("a: \0", 4)));
    EXPECT_EQ("1:5: Invalid YAML: control character", yaml("a: \"\x7F\""));
    EXPECT_NE("", toml(std::string("a = \"\0\"", 7)));
}

TEST_F(HostileFilesTest, WhatIsNotClosedIsRefused) {
    for (const char* text :
         {"{\"a\": \"x", "{\"a\": [1", "{\"a\": {", "{\"a\"", "{", "{\"a\": \"\\", "\""})
        EXPECT_NE("", json(text)) << text;
    for (const char* text :
         {"a: \"x", "a: \"x\n", "a: 'x", "a: 'x\n\n", "a: 'x''\n", "a: \"x\\\"\n", "a: [1",
          "a: {b: 1\n", "a: !!str &x \"y\n", "\"a\n", "a: # c\n  \"x\n"})
        EXPECT_NE("", yaml(text)) << text;
    for (const char* text : {"a = \"x", "a = \"x\n", "a = 'x", "a = \"\"\"x", "a = [1",
                             "a = {b = 1", "[a", "a =", "a", "\"a"})
        EXPECT_NE("", toml(text)) << text;
}

TEST_F(HostileFilesTest, SmallPiecesOfDocumentsNeverDoHarm) {
    const std::string pieces[] = {"{", "}",  "[", "]", ":", ",",   "\"",  "'",      "a",
                                  "1", "\n", " ", "-", "?", "&a ", "*a",  "!!str ", "<<",
                                  "|", ">",  "#", "=", ".", "\\",  "---", "~"};
    unsigned state = 12345;
    const auto next = [&](std::size_t bound) {
        state = state * 1664525 + 1013904223;
        return (state >> 8) % bound;
    };
    for (int round = 0; round < 700; ++round) {
        std::string text;
        for (std::size_t length = next(12); length > 0; --length)
            text += pieces[next(std::size(pieces))];
        SCOPED_TRACE(text);
        json(text);
        yaml(text);
        toml(text);
    }
}

} // namespace test
