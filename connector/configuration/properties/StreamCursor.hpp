/// Reads a stream character by character at the speed of memory.
#pragma once

#include <algorithm>
#include <cstddef>
#include <istream>
#include <limits>
#include <streambuf>
#include <string>
#include <string_view>

namespace connector::configuration::detail {

/// Does what a loop of stream.get(c) does, and cannot be told from one afterwards: it walks over the
/// characters that the stream's buffer holds already, and wherever the buffer has to be filled it
/// calls get itself, so that the end of the input, a read error and the stream's exceptions come
/// about exactly as they do there.
///
/// The position of the stream is brought up to date by sync and by the destructor. Whoever lets
/// others touch the stream in between calls sync before and refresh after.
class StreamCursor {
public:
    explicit StreamCursor(std::istream& newStream) : stream(newStream) {}
    ~StreamCursor() { sync(); }
    StreamCursor(const StreamCursor&) = delete;
    StreamCursor& operator=(const StreamCursor&) = delete;

    /// @return whether the stream is good, that is, whether every read so far succeeded
    bool good() const { return stream.good(); }

    /// Reads the next character into c, or leaves c alone when there is none.
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

    /// Gives the last character back, if it is still in memory.
    /// @return whether it was
    bool stepBack() {
        if (position == start)
            return false;
        --position;
        return true;
    }

    /// @return what is in memory behind the last character that was consumed
    std::string_view ahead() const { return {position, static_cast<std::size_t>(end - position)}; }

    /// Consumes that many characters, which are in memory.
    void skip(std::size_t count) { position += count; }

    /// Consumes characters up to one that `stops` accepts, or up to the end of what is in memory,
    /// and appends them to `text`. So it may stop early, never late.
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

    /// Tells the stream's buffer what was consumed, and lets go of its memory.
    void sync() {
        if (position == nullptr)
            return;
        consumedBefore = consumed();
        (stream.rdbuf()->*&GetArea::gbump)(static_cast<int>(position - start));
        start = position = end = nullptr;
    }

    /// Looks at the buffer's memory again. Only for a good stream.
    void refresh() {
        start = position = (stream.rdbuf()->*&GetArea::gptr)();
        const std::ptrdiff_t available = (stream.rdbuf()->*&GetArea::egptr)() - start;
        end = start + std::min<std::ptrdiff_t>(available, std::numeric_limits<int>::max());
    }

private:
    /// Opens the protected operations on the get area; no object of it ever exists.
    struct GetArea : std::streambuf {
        using std::streambuf::egptr;
        using std::streambuf::gbump; // takes an int, so more than that is never looked at at once
        using std::streambuf::gptr;
    };

    std::istream& stream;
    std::streamoff consumedBefore = 0; // what was consumed up to `start`
    // All null, or in the stream buffer's get area: where its position is, where ours is, the end.
    const char* start = nullptr;
    const char* position = nullptr;
    const char* end = nullptr;
};

} // namespace connector::configuration::detail
