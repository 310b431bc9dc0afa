/// Stream buffers that supply a text in every way that a stream buffer may.
#pragma once

#include <cstddef>
#include <ios>
#include <memory>
#include <streambuf>
#include <string>

namespace test {

/// How the text reaches the reader.
enum class Supply {
    pieces,     ///< the get area is a window that moves over the text
    reused,     ///< the get area is one small buffer that every refill overwrites
    unbuffered, ///< there is no get area
};

/// What happens after the last character.
enum class InputEnd {
    regular,       ///< the end of the input
    throwing,      ///< a read error: the buffer throws std::runtime_error "read error"
    settingBadBit, ///< a read error: the buffer returns the end and sets the stream's bad bit
};

/// Supplies `text` and then ends as chosen. Reports its position but cannot seek.
class SupplyBuffer : public std::streambuf {
public:
    SupplyBuffer(std::string newText, InputEnd newEnd)
        : text(std::move(newText)), inputEnd(newEnd) {}

    /// Sets the stream whose bad bit InputEnd::settingBadBit sets.
    void attach(std::ios& newStream) { stream = &newStream; }

protected:
    /// @return the number of characters that are left
    std::size_t remaining() const { return text.size() - supplied; }
    int_type end();
    pos_type seekoff(off_type offset, std::ios_base::seekdir direction,
                     std::ios_base::openmode mode) override;

    std::string text;
    std::size_t supplied = 0;

private:
    const InputEnd inputEnd;
    std::ios* stream = nullptr;
};

/// @param pieceSize  characters per refill, at least 1; ignored by Supply::unbuffered
std::unique_ptr<SupplyBuffer> makeSupplyBuffer(Supply supply, const std::string& text,
                                               std::size_t pieceSize, InputEnd inputEnd);

} // namespace test
