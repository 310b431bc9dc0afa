/// When a logger writes, and how it is found.

#include "support/LogCapture.hpp"

#include <foundation/log/basic_diagnostic_logger.hpp>

#include <gtest/gtest.h>

#include <locale>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace test {

namespace {

using foundation::log::basic_diagnostic_logger;
using foundation::log::set_diagnostic_mask;

using Lines = std::vector<std::string>;

/// An argument that counts how often it is formatted.
struct Counted {
    int& count;
};

std::ostream& operator<<(std::ostream& stream, const Counted& counted) {
    ++counted.count;
    return stream << "counted";
}

/// An argument whose formatting throws.
struct ThrowingArgument {};

std::ostream& operator<<(std::ostream&, const ThrowingArgument&) {
    throw std::domain_error("cannot be formatted");
}

/// Formats numbers unlike the classic locale.
struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '\''; }
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\2"; }
    std::string do_truename() const override { return "ja"; }
};

class GlobalLocale {
public:
    explicit GlobalLocale(const std::locale& locale) : before(std::locale::global(locale)) {}
    ~GlobalLocale() { std::locale::global(before); }
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;

private:
    const std::locale before;
};

} // namespace

class DiagnosticLogger : public testing::Test {
protected:
    basic_diagnostic_logger logger{"test::logger"};
    LogCapture log;
};

TEST_F(DiagnosticLogger, KnowsItsName) {
    EXPECT_EQ("test::logger", logger.name());
}

TEST_F(DiagnosticLogger, HasNothingEnabledInitially) {
    for (unsigned bit = 1; bit != 0; bit <<= 1)
        EXPECT_FALSE(logger.enabled(bit)) << bit;
    logger.log(~0u, "line");
    EXPECT_EQ(Lines(), log.lines());
}

TEST_F(DiagnosticLogger, WritesTheLinesWhoseBitIsOn) {
    logger.set_mask(8 | 32);
    logger.log(8, "eight");
    logger.log(16, "sixteen");
    logger.log(32, "thirty-two");
    EXPECT_EQ((Lines{"eight", "thirty-two"}), log.lines());
}

TEST_F(DiagnosticLogger, ReportsWhetherABitIsOn) {
    logger.set_mask(8 | 32);
    EXPECT_TRUE(logger.enabled(8));
    EXPECT_FALSE(logger.enabled(16));
    EXPECT_TRUE(logger.enabled(32));
    EXPECT_FALSE(logger.enabled(0));
}

TEST_F(DiagnosticLogger, ReplacesTheMask) {
    logger.set_mask(8);
    logger.set_mask(16);
    EXPECT_FALSE(logger.enabled(8));
    EXPECT_TRUE(logger.enabled(16));
}

TEST_F(DiagnosticLogger, SupportsTheHighestBit) {
    logger.set_mask(0x80000000u);
    EXPECT_TRUE(logger.enabled(0x80000000u));
    EXPECT_FALSE(logger.enabled(0x7FFFFFFFu));
}

TEST_F(DiagnosticLogger, ConcatenatesItsArguments) {
    logger.set_mask(1);
    logger.log(1, "get: ", std::string("key"), " from ", 1, ' ', -2, ' ', 3u, ' ', true, ' ', 0.5);
    EXPECT_EQ((Lines{"get: key from 1 -2 3 1 0.5"}), log.lines());
}

TEST_F(DiagnosticLogger, KeepsEveryByteOfAnArgument) {
    logger.set_mask(1);
    logger.log(1, std::string("a\0\n\xFF", 4));
    EXPECT_EQ((Lines{std::string("a\0\n\xFF", 4)}), log.lines());
}

TEST_F(DiagnosticLogger, WritesAnEmptyLine) {
    logger.set_mask(1);
    logger.log(1, "");
    EXPECT_EQ((Lines{""}), log.lines());
}

TEST_F(DiagnosticLogger, FormatsItsArgumentsOnlyWhileTheBitIsOn) {
    int count = 0;
    logger.log(8, Counted{count});
    logger.set_mask(~8u);
    logger.log(8, Counted{count}, Counted{count});
    EXPECT_EQ(0, count);
    logger.set_mask(8);
    logger.log(8, Counted{count}, Counted{count});
    EXPECT_EQ(2, count);
    EXPECT_EQ((Lines{"countedcounted"}), log.lines());
}

TEST_F(DiagnosticLogger, ThrowsWhatAnArgumentThrows) {
    logger.set_mask(1);
    EXPECT_THROW(logger.log(1, "begun ", ThrowingArgument()), std::domain_error);
    EXPECT_EQ(Lines(), log.lines());
}

TEST_F(DiagnosticLogger, WritesNumbersAsTheClassicLocaleDoes) {
    const GlobalLocale global(std::locale(std::locale::classic(), new Grouping));
    logger.set_mask(1);
    logger.log(1, 1234567, ' ', 1234567u, ' ', 0.5, ' ', true);
    EXPECT_EQ((Lines{"1234567 1234567 0.5 1"}), log.lines());
}

TEST_F(DiagnosticLogger, IsFoundByItsName) {
    EXPECT_TRUE(set_diagnostic_mask("test::logger", 4));
    EXPECT_TRUE(logger.enabled(4));
    EXPECT_TRUE(set_diagnostic_mask("test::logger", 0));
    EXPECT_FALSE(logger.enabled(4));
}

TEST_F(DiagnosticLogger, IsNotFoundByAnotherName) {
    for (const char* name : {"", "test", "test::logger2", "Test::logger", "test::logger "}) {
        EXPECT_FALSE(set_diagnostic_mask(name, ~0u)) << name;
        EXPECT_FALSE(logger.enabled(~0u)) << name;
    }
}

TEST_F(DiagnosticLogger, SharesItsMaskWithOthersOfItsName) {
    const basic_diagnostic_logger same("test::logger");
    const basic_diagnostic_logger other("test::other");
    EXPECT_TRUE(set_diagnostic_mask("test::logger", 4));
    EXPECT_TRUE(logger.enabled(4));
    EXPECT_TRUE(same.enabled(4));
    EXPECT_FALSE(other.enabled(4));
}

TEST_F(DiagnosticLogger, DoesNotInheritTheMaskOfAnOlderLoggerOfItsName) {
    set_diagnostic_mask("test::logger", 4);
    const basic_diagnostic_logger later("test::logger");
    EXPECT_FALSE(later.enabled(4));
}

TEST_F(DiagnosticLogger, IsForgottenWhenItIsDestroyed) {
    auto shortLived = std::make_unique<basic_diagnostic_logger>("test::short");
    EXPECT_TRUE(set_diagnostic_mask("test::short", 1));
    shortLived.reset();
    EXPECT_FALSE(set_diagnostic_mask("test::short", 1));
}

TEST_F(DiagnosticLogger, LeavesItsNameToOthersWhenItIsDestroyed) {
    auto shortLived = std::make_unique<basic_diagnostic_logger>("test::logger");
    shortLived.reset();
    EXPECT_TRUE(set_diagnostic_mask("test::logger", 4));
    EXPECT_TRUE(logger.enabled(4));
}

TEST_F(DiagnosticLogger, MayHaveItsMaskChangedWhileOthersWrite) {
    std::thread writer([this] {
        for (int i = 0; i < 2000; ++i)
            logger.log(1, "line");
    });
    for (int i = 0; i < 2000; ++i)
        EXPECT_TRUE(set_diagnostic_mask("test::logger", i % 2));
    writer.join();
    for (const std::string& line : log.lines())
        EXPECT_EQ("line", line);
}

TEST_F(DiagnosticLogger, WritesEveryLineOfSeveralThreads) {
    logger.set_mask(1);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([this] {
            for (int i = 0; i < 100; ++i)
                logger.log(1, "line ", i);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(400u, log.lines().size());
}

} // namespace test
