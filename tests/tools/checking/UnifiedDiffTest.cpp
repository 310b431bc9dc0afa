/// Patches.
#include "checking/UnifiedDiff.hpp"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <vector>

namespace {

using connector_config::unifiedDiff;

/// Applies a patch of unifiedDiff, and checks that it fits.
std::string patched(const std::string& before, const std::string& patch) {
    std::istringstream old(before), lines(patch);
    std::string result, line;
    std::getline(lines, line); // the header
    std::getline(lines, line);
    std::size_t position = 0; // lines of `before` that were passed
    const auto pass = [&](const std::string& expected, bool isKept) {
        std::string own;
        std::getline(old, own);
        EXPECT_EQ(expected, own);
        result += isKept ? own + (old.eof() ? "" : "\n") : "";
        ++position;
    };
    while (std::getline(lines, line)) {
        if (line.front() == '@') {
            std::size_t first = std::stoul(line.substr(line.find('-') + 1));
            const bool isInsertion = line.substr(line.find(','), 3) == ",0 ";
            for (std::string own; position + (isInsertion ? 0 : 1) < first; ++position) {
                std::getline(old, own);
                result += own + '\n';
            }
        } else if (line.front() == '\\') {
            if (!result.empty() && result.back() == '\n')
                result.pop_back();
        } else if (line.front() == '+') {
            result += line.substr(1) + '\n';
        } else {
            pass(line.substr(1), line.front() == ' ');
        }
    }
    for (std::string own; std::getline(old, own);)
        result += own + (old.eof() ? "" : "\n");
    return result;
}

TEST(UnifiedDiff, IsEmptyForEqualTexts) {
    EXPECT_EQ("", unifiedDiff("f", "", ""));
    EXPECT_EQ("", unifiedDiff("f", "a\nb", "a\nb"));
}

TEST(UnifiedDiff, HasThreeLinesOfContext) {
    EXPECT_EQ("--- f\n+++ f\n@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+x\n 6\n 7\n 8\n",
              unifiedDiff("f", "1\n2\n3\n4\n5\n6\n7\n8\n9\n", "1\n2\n3\n4\nx\n6\n7\n8\n9\n"));
}

TEST(UnifiedDiff, ChangesThatAreNearAreOneHunk) {
    EXPECT_EQ("--- f\n+++ f\n@@ -1,8 +1,9 @@\n-1\n+x\n 2\n 3\n 4\n 5\n 6\n 7\n+y\n 8\n",
              unifiedDiff("f", "1\n2\n3\n4\n5\n6\n7\n8\n", "x\n2\n3\n4\n5\n6\n7\ny\n8\n"));
    EXPECT_EQ("--- f\n+++ f\n@@ -1,4 +1,4 @@\n-1\n+x\n 2\n 3\n 4\n@@ -6,4 +6,4 @@\n 6\n 7\n 8\n-9\n"
              "+y\n",
              unifiedDiff("f", "1\n2\n3\n4\n5\n6\n7\n8\n9\n", "x\n2\n3\n4\n5\n6\n7\n8\ny\n"));
}

TEST(UnifiedDiff, SaysThatALineBreakIsMissing) {
    EXPECT_EQ("--- f\n+++ f\n@@ -1,1 +1,1 @@\n-a\n\\ No newline at end of file\n+b\n",
              unifiedDiff("f", "a", "b\n"));
    EXPECT_EQ("--- f\n+++ f\n@@ -0,0 +1,1 @@\n+a\n", unifiedDiff("f", "", "a\n"));
}

TEST(UnifiedDiff, APatchMakesTheNewTextOfTheOldOne) {
    std::mt19937 random(1);
    const auto text = [&random](unsigned length) {
        std::string lines;
        for (unsigned i = 0; i < length; ++i)
            lines += std::string(1, static_cast<char>('a' + random() % 5)) + '\n';
        return lines;
    };
    for (int i = 0; i < 2000 && !testing::Test::HasFailure(); ++i) {
        const std::string before = text(random() % 30), after = text(random() % 30);
        const std::string patch = unifiedDiff("f", before, after);
        EXPECT_EQ(after, patched(before, patch)) << before << "---\n" << patch;
    }
}

TEST(UnifiedDiff, ALongChangeTakesLittleTime) {
    std::string before, after;
    for (int i = 0; i < 50'000; ++i) {
        before += std::to_string(i) + '\n';
        after += 'x' + std::to_string(i) + '\n';
    }
    EXPECT_LT(before.size(), unifiedDiff("f", before, after).size());
}

} // namespace
