#include <connector/service/messages/LineReader.hpp>

#include "support/ObservedThread.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

using connector::service::LineReader;

/// @return the lines that a reader finds in these bytes
std::vector<std::string> linesIn(const std::string& bytes, std::size_t longest) {
    int ends[2];
    if (::pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    std::thread writer([&] {
        for (std::size_t done = 0; done < bytes.size();) {
            const ssize_t count = ::write(ends[1], bytes.data() + done, bytes.size() - done);
            done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        }
        ::close(ends[1]);
    });
    std::vector<std::string> lines;
    LineReader reader(ends[0], longest);
    while (const auto line = reader.next())
        lines.push_back(*line);
    writer.join();
    ::close(ends[0]);
    return lines;
}

using Lines = std::vector<std::string>;

TEST(LineReader, RemovesLineBreaks) {
    EXPECT_EQ((Lines{"a", "", "b"}), linesIn("a\n\nb\n", 10));
}

TEST(LineReader, FindsNoLineInEmptyInput) {
    EXPECT_EQ(Lines{}, linesIn("", 10));
}

TEST(LineReader, TheLastLineNeedsNoLineBreak) {
    EXPECT_EQ((Lines{"a", "b"}), linesIn("a\nb", 10));
}

TEST(LineReader, TruncatesALongLineToOneByteMoreThanTheMaximum) {
    EXPECT_EQ((Lines{"abcd", "e"}), linesIn("abcdefgh\ne\n", 3));
    EXPECT_EQ((Lines{"abc", "abcd"}), linesIn("abc\nabcd\n", 3));
}

TEST(LineReader, ReadsLinesThatAreLongerThanItsBuffer) {
    const std::string line(200000, 'x');
    EXPECT_EQ((Lines{line, "y"}), linesIn(line + "\ny\n", 300000));
    EXPECT_EQ((Lines{line.substr(0, 70001), "y"}), linesIn(line + "\ny\n", 70000));
}

TEST(LineReader, WaitsForInputThatDoesNotBlock) {
    int ends[2];
    ASSERT_EQ(0, ::pipe2(ends, O_NONBLOCK | O_CLOEXEC));
    LineReader reader(ends[0], 10);
    for (const std::string line : {"a", "b"}) {
        std::optional<std::string> read;
        test::ObservedThread reading([&] { read = reader.next(); });
        EXPECT_TRUE(reading.blocksInPoll());
        EXPECT_EQ(2, ::write(ends[1], (line + "\n").data(), 2));
        reading.join();
        EXPECT_EQ(line, read);
    }
    ::close(ends[1]);
    EXPECT_EQ(std::nullopt, reader.next());
    ::close(ends[0]);
}

TEST(LineReader, ThrowsIfReadingFails) {
    LineReader reader(-1, 10);
    EXPECT_THROW(reader.next(), std::system_error);
}

} // namespace
