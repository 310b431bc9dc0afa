/// The cursor itself. The parser's tests cover most of it; these tests cover the rest.

#include <connector/configuration/properties/StreamCursor.hpp>

#include <gtest/gtest.h>

#include <sys/mman.h>

#include <iterator>
#include <limits>
#include <new>
#include <sstream>
#include <string>

namespace test {

namespace {

using connector::configuration::detail::StreamCursor;

/// Has one huge get area. Its memory is only reserved: pages that are never read cost nothing.
class HugeBuffer : public std::streambuf {
public:
    explicit HugeBuffer(std::size_t newSize)
        : size(newSize),
          memory(static_cast<char*>(
              mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))) {
        setg(memory, memory, memory + size);
    }
    ~HugeBuffer() override { munmap(memory, size); }
    HugeBuffer(const HugeBuffer&) = delete;
    HugeBuffer& operator=(const HugeBuffer&) = delete;

    std::size_t position() const { return static_cast<std::size_t>(gptr() - eback()); }

private:
    const std::size_t size;
    char* const memory;
};

constexpr std::size_t intMax = std::numeric_limits<int>::max();

/// @return the rest of the stream
std::string rest(std::istream& stream) {
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

bool isComma(char c) {
    return c == ',';
}

} // namespace

TEST(StreamCursor, LeavesTheStreamAfterTheConsumedCharacters) {
    std::istringstream stream("abcdef");
    {
        StreamCursor cursor(stream);
        char c;
        for (int i = 0; i < 3; ++i)
            ASSERT_TRUE(cursor.next(c));
    }
    EXPECT_EQ("def", rest(stream));
}

TEST(StreamCursor, LeavesTheStreamAfterTheConsumedCharactersWhenAnExceptionIsThrown) {
    std::istringstream stream("abcdef");
    try {
        StreamCursor cursor(stream);
        char c;
        cursor.next(c);
        cursor.next(c);
        throw std::bad_alloc();
    } catch (const std::bad_alloc&) {
        EXPECT_EQ("cdef", rest(stream));
    }
}

TEST(StreamCursor, ConsumesARunUpToTheCharacterThatEndsIt) {
    std::istringstream stream("abc,def");
    StreamCursor cursor(stream);
    char c;
    ASSERT_TRUE(cursor.next(c));
    std::string text(1, c);
    cursor.appendUntil(isComma, text);
    EXPECT_EQ("abc", text);
    ASSERT_TRUE(cursor.next(c));
    EXPECT_EQ(',', c);
    cursor.skipUntil(isComma);
    EXPECT_FALSE(cursor.next(c));
    EXPECT_EQ(',', c); // unchanged
    EXPECT_FALSE(cursor.good());
}

TEST(StreamCursor, ConsumesNoRunBeforeTheFirstCharacterIsRead) {
    std::istringstream stream("abc");
    StreamCursor cursor(stream);
    std::string text;
    cursor.appendUntil(isComma, text);
    cursor.sync();
    EXPECT_EQ("", text);
    EXPECT_EQ("abc", rest(stream));
}

TEST(StreamCursor, SeesOtherReadsBetweenSyncAndRefresh) {
    std::istringstream stream("abcdef");
    StreamCursor cursor(stream);
    char c;
    ASSERT_TRUE(cursor.next(c));
    cursor.sync();
    EXPECT_EQ('b', stream.get());
    cursor.refresh();
    ASSERT_TRUE(cursor.next(c));
    EXPECT_EQ('c', c);
}

TEST(StreamCursor, StepsBackByOneCharacter) {
    std::istringstream stream("abc");
    StreamCursor cursor(stream);
    char c;
    EXPECT_FALSE(cursor.stepBack()); // nothing was read yet
    cursor.next(c);
    EXPECT_FALSE(cursor.stepBack()); // read by the stream, not in the get area
    cursor.next(c);
    EXPECT_TRUE(cursor.stepBack());
    EXPECT_EQ("bc", cursor.ahead());
    cursor.sync();
    EXPECT_EQ("bc", rest(stream));
}

TEST(StreamCursor, CountsTheConsumedCharacters) {
    std::istringstream stream("abcdef");
    StreamCursor cursor(stream);
    EXPECT_EQ(0, cursor.consumed());
    char c;
    cursor.next(c);
    EXPECT_EQ(1, cursor.consumed());
    cursor.skip(2);
    EXPECT_EQ(3, cursor.consumed());
    cursor.sync();
    EXPECT_EQ(3, cursor.consumed());
    while (cursor.next(c))
        continue;
    EXPECT_EQ(6, cursor.consumed());
}

TEST(StreamCursor, ConsumesAGetAreaBeyondTheRangeOfIntInParts) {
    HugeBuffer buffer(intMax + 100);
    std::istream stream(&buffer);
    StreamCursor cursor(stream);
    char c;
    ASSERT_TRUE(cursor.next(c));
    cursor.skipUntil([](char) { return false; });
    cursor.sync();
    EXPECT_EQ(1 + intMax, buffer.position());
    cursor.refresh();
    cursor.skipUntil([](char) { return false; });
    cursor.sync();
    EXPECT_EQ(100 + intMax, buffer.position());
    EXPECT_FALSE(cursor.next(c));
    EXPECT_TRUE(stream.eof());
}

} // namespace test
