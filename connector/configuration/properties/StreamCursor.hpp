/// Reads a stream character by character, directly from its buffer.
#pragma once

#include <algorithm>
#include <cstddef>
#include <istream>
#include <limits>
#include <streambuf>
#include <string>
#include <string_view>

namespace connector::configuration::detail {

/// Does what a loop of stream.get(c) does, and leaves the stream in the same state: it reads the
/// characters that the stream's buffer holds, and calls get itself wherever the buffer has to be
/// filled. So the end of the input, read errors and the stream's exceptions come about as they do
/// there.
///
/// sync and the destructor update the position of the stream. Call sync before other code uses the
/// stream, and refresh after it.
class StreamCursor {
public:
    explicit StreamCursor(std::istream& newStream) : stream(newStream) {}
    ~StreamCursor() { sync(); }
    StreamCursor(const StreamCursor&) = delete;
    StreamCursor& operator=(const StreamCursor&) = delete;

    /// @return whether the stream is good, that is, whether every read so far succeeded
    bool good() const { return stream.good(); }

    /// Reads the next character into c, or leaves c unchanged at the end.
    /// @return whether there was one
    bool next(char& c) {
        if (position != end) {
            c = *position++;
            return true;
        }
        sync();
        if (!stream.get(c))
            return false;
        ++consumedBefore;
        refresh();
        return true;
    }

    /// Returns the last character to the input, if it is still in the buffer.
    /// @return whether it was
    bool stepBack() {
        if (position == start)
            return false;
        --position;
        return true;
    }

    /// @return the part of the buffer behind the last character that was consumed
    std::string_view ahead() const { return {position, static_cast<std::size_t>(end - position)}; }

    /// Consumes that many characters. REQUIRES: ahead() has as many
    void skip(std::size_t count) { position += count; }

    /// Consumes characters up to one that `stops` accepts, or up to the end of the buffer, and
    /// appends them to `text`. So it may stop early, never late.
    template <typename Stops>
    void appendUntil(Stops stops, std::string& text) {
        const char* const first = position;
        skipUntil(stops);
        text.append(first, position);
    }

    /// As appendUntil, but drops the characters.
    template <typename Stops>
    void skipUntil(Stops stops) {
        position = std::find_if(position, end, stops);
    }

    /// @return how many characters were consumed in all
    std::streamoff consumed() const { return consumedBefore + (position - start); }

    /// Tells the stream's buffer what was consumed. The buffer may then be used by other code.
    void sync() {
        if (position == nullptr)
            return;
        consumedBefore = consumed();
        (stream.rdbuf()->*&GetArea::gbump)(static_cast<int>(position - start));
        start = position = end = nullptr;
    }

    /// Starts to read the buffer again. REQUIRES: good()
    void refresh() {
        start = position = (stream.rdbuf()->*&GetArea::gptr)();
        const std::ptrdiff_t available = (stream.rdbuf()->*&GetArea::egptr)() - start;
        end = start + std::min<std::ptrdiff_t>(available, std::numeric_limits<int>::max());
    }

private:
    /// Gives access to the protected operations on the get area. There are no objects of it.
    struct GetArea : std::streambuf {
        using std::streambuf::egptr;
        using std::streambuf::gbump; // takes an int, so no more than that is read at a time
        using std::streambuf::gptr;
    };

    std::istream& stream;
    std::streamoff consumedBefore = 0; // what was consumed up to `start`
    // All null, or in the stream buffer's get area: the stream's position, ours, and the end.
    const char* start = nullptr;
    const char* position = nullptr;
    const char* end = nullptr;
};

} // namespace connector::configuration::detail
