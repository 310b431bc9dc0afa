/// Holds the checker against the library's parser, against java.util.Properties and against its own
/// promise, on generated files.

#include "configuration/properties/lint/GeneratedFiles.hpp"
#include "configuration/properties/lint/Tables.hpp"

#include <connector/configuration/properties/Lint.hpp>
#include <connector/configuration/properties/PropertyParser.hpp>
#include <connector/configuration/properties/StreamCursor.hpp>
#include <connector/configuration/properties/lint/ConventionReader.hpp>
#include <connector/configuration/properties/lint/LibraryReader.hpp>
#include <connector/configuration/properties/lint/Writing.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

namespace test {

namespace {

namespace properties = connector::configuration::properties;
using properties::Finding;
using properties::Rule;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr unsigned fileCount = 12'000; // sanitizers are slow; other builds read ten times as many
#else
constexpr unsigned fileCount = 120'000;
#endif

using Sequence = std::vector<std::pair<std::string, std::string>>;

Sequence parsed(const std::string& text) {
    std::istringstream stream(text);
    connector::configuration::detail::StreamCursor cursor(stream);
    Sequence sequence;
    connector::configuration::detail::PropertyParser parser(
        cursor, [&sequence](std::string_view key, std::string_view value, bool) {
            sequence.emplace_back(key, value);
        });
    parser.parse();
    return sequence;
}

Sequence readWithPlaces(const std::string& text) {
    Sequence sequence;
    for (const auto& property : properties::detail::readAsLibrary(text).properties) {
        if (property.isStored)
            sequence.emplace_back(properties::detail::decoded(text, property.key),
                                  properties::detail::decoded(text, property.value));
    }
    return sequence;
}

/// @return the table of java.util.Properties as the checker reads it; nothing if it is refused
std::optional<UnicodeTable> readAsConvention(const std::string& text) {
    using Kind = properties::detail::ConventionEscape::Kind;
    const auto reading = properties::detail::readAsConvention(text);
    const bool isRefused =
        std::any_of(reading.escapes.begin(), reading.escapes.end(),
                    [](const auto& escape) { return escape.kind == Kind::Malformed; });
    if (isRefused)
        return std::nullopt;
    UnicodeTable table;
    for (const auto& property : reading.properties)
        table[toUtf16(property.key.bytes)] = toUtf16(property.value.bytes);
    return table;
}

std::vector<Finding> lint(const std::string& text) {
    std::istringstream stream(text);
    return properties::lint(stream);
}

bool hasDifference(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return isDifference(finding.rule); });
}

bool has(const std::vector<Finding>& findings, Rule rule) {
    return std::any_of(findings.begin(), findings.end(),
                       [rule](const Finding& finding) { return finding.rule == rule; });
}

bool agree(const std::string& text, const std::optional<UnicodeTable>& convention) {
    return convention && unicodeTable(readByLibrary(text)) == convention;
}

/// Compares the tables byte by byte, for files that are not UTF-8.
bool bytesAgree(const std::string& text) {
    if (!readAsConvention(text))
        return false;
    const auto bytes = [](const properties::detail::ConventionText& text) {
        return text.bytes + (text.hasHalf ? "a half, which is no text" : "");
    };
    Table table;
    for (const auto& property : properties::detail::readAsConvention(text).properties)
        table[bytes(property.key)] = bytes(property.value);
    return table == readByLibrary(text);
}

/// Calls `check` with the number of each generated file, up to the first failure.
template <typename Check>
void forGeneratedFiles(const std::vector<std::string>& files, Check check) {
    for (std::size_t i = 0; i < files.size() && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(testing::PrintToString(files[i]));
        check(i);
    }
}

std::vector<std::string> allFiles() {
    std::vector<std::string> files = generatedFiles(fileCount);
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(PROJECT_ROOT "/examples")) {
        if (entry.path().extension() != ".properties")
            continue;
        std::ifstream in(entry.path(), std::ios::binary);
        files.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    EXPECT_GT(files.size(), fileCount);
    return files;
}

} // namespace

TEST(LintDifferential, TheReaderWithPlacesReadsAsTheParser) {
    const std::vector<std::string> files = allFiles();
    forGeneratedFiles(files, [&files](std::size_t i) {
        EXPECT_EQ(parsed(files[i]), readWithPlaces(files[i]));
        const std::string bytes = generatedBytes(static_cast<unsigned>(i));
        EXPECT_EQ(parsed(bytes), readWithPlaces(bytes)) << testing::PrintToString(bytes);
    });
}

TEST(LintDifferential, TheConventionIsReadAsJavaReadsIt) {
    if (!hasJava())
        GTEST_SKIP() << "There is no Java compiler";
    const std::vector<std::string> files = allFiles();
    const auto tables = readByJava(files);
    forGeneratedFiles(files,
                      [&](std::size_t i) { EXPECT_EQ(tables[i], readAsConvention(files[i])); });
}

TEST(LintDifferential, ADifferenceIsFoundIfAndOnlyIfTheTablesDiffer) {
    const std::vector<std::string> files = allFiles();
    const auto tables = hasJava() ? readByJava(files) : std::vector<std::optional<UnicodeTable>>();
    std::size_t different = 0;
    forGeneratedFiles(files, [&](std::size_t i) {
        const bool same = agree(files[i], hasJava() ? tables[i] : readAsConvention(files[i]));
        EXPECT_EQ(same, !hasDifference(lint(files[i])));
        different += same ? 0 : 1;
    });
    std::cout << files.size() << " files, " << different << " with a difference; compared with "
              << (hasJava() ? "java.util.Properties" : "the reader of the checker") << "\n";
}

TEST(LintDifferential, BytesThatAreNotUtf8CountAsReadAlike) {
    for (unsigned seed = 1; seed <= fileCount && !testing::Test::HasFailure(); ++seed) {
        const std::string bytes = generatedBytes(seed);
        SCOPED_TRACE(testing::PrintToString(bytes));
        EXPECT_EQ(bytesAgree(bytes), !hasDifference(lint(bytes)));
    }
}

TEST(LintDifferential, NoDifferenceIsWithoutAReason) {
    const std::vector<std::string> files = allFiles();
    forGeneratedFiles(files, [&files](std::size_t i) {
        for (const Finding& finding : lint(files[i])) {
            EXPECT_EQ(std::string::npos, finding.text.find("this is read differently"));
            if (finding.rule == Rule::Difference) {
                EXPECT_NE(std::string::npos, finding.text.find("form feed")) << finding.text;
            }
        }
    });
}

TEST(LintDifferential, ALineThatIsWrittenSaysTheSameToBoth) {
    const std::vector<std::string> files = allFiles();
    forGeneratedFiles(files, [](std::size_t i) {
        const std::string bytes = generatedBytes(static_cast<unsigned>(i));
        for (const auto& [key, value] : readByLibrary(bytes)) {
            const std::string line = properties::detail::written(key, value) + '\n';
            SCOPED_TRACE(testing::PrintToString(line));
            EXPECT_EQ((Table{{key, value}}), readByLibrary(line));
            EXPECT_FALSE(hasDifference(lint(line)));
        }
    });
}

TEST(LintDifferential, AFixedFileHasTheSameTableAndOnlyWhatNoTextCanSay) {
    const std::vector<std::string> files = allFiles();
    const auto check = [](const std::string& text) {
        const std::string result = properties::fixed(text);
        EXPECT_EQ(readByLibrary(text), readByLibrary(result)) << testing::PrintToString(result);
        for (const Finding& finding : lint(result)) {
            if (!isDifference(finding.rule))
                continue;
            EXPECT_EQ(Rule::UnicodeEscape, finding.rule) << finding.text;
            EXPECT_EQ(std::string::npos, finding.text.find("for both to read the former"))
                << finding.text;
        }
        EXPECT_EQ(result, properties::fixed(result));
    };
    forGeneratedFiles(files, [&](std::size_t i) {
        check(files[i]);
        const std::string bytes = generatedBytes(static_cast<unsigned>(i));
        SCOPED_TRACE(testing::PrintToString(bytes));
        check(bytes);
    });
}

TEST(LintDifferential, JavaReadsAFixedFileAsTheLibraryReadTheOldOne) {
    if (!hasJava())
        GTEST_SKIP() << "There is no Java compiler";
    const std::vector<std::string> files = allFiles();
    std::vector<std::string> results;
    for (const std::string& file : files)
        results.push_back(properties::fixed(file));
    const auto tables = readByJava(results);
    forGeneratedFiles(files, [&](std::size_t i) {
        const std::vector<Finding> findings = lint(results[i]);
        EXPECT_FALSE(has(findings, Rule::NotUtf8));
        if (!hasDifference(findings)) {
            EXPECT_EQ(unicodeTable(readByLibrary(files[i])), tables[i]);
        }
    });
}

TEST(LintDifferential, AFileWithoutDifferenceIsNotChanged) {
    const std::vector<std::string> files = allFiles();
    forGeneratedFiles(files, [&files](std::size_t i) {
        if (!hasDifference(lint(files[i]))) {
            EXPECT_EQ(files[i], properties::fixed(files[i]));
        }
    });
}

} // namespace test
