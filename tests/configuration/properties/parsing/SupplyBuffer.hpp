/// Stream buffers that hand out a text in every way in which a stream buffer may.
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
    reused,     ///< the get area is one small memory that every refill overwrites
    unbuffered, ///< there never is a get area
};

/// What happens behind the last character.
enum class Ending {
    endOfInput, ///< the end of the input
    throwing,   ///< a read error: the buffer throws std::runtime_error "read error"
    turningBad, ///< a read error: the buffer answers the end and sets the stream's bad bit
};

/// Hands out `text` as told, then ends as told. Knows its position, and cannot seek.
class SupplyBuffer : public std::streambuf {
public:
    SupplyBuffer(std::string newText, Ending newEnding)
        : text(std::move(newText)), ending(newEnding) {}

    /// The stream whose bad bit Ending::turningBad sets.
    void attach(std::ios& newStream) { stream = &newStream; }

protected:
    /// @return how many characters there are to hand out
    std::size_t remaining() const { return text.size() - handedOut; }
    int_type end();
    pos_type seekoff(off_type offset, std::ios_base::seekdir direction,
                     std::ios_base::openmode mode) override;

    std::string text;
    std::size_t handedOut = 0;

private:
    const Ending ending;
    std::ios* stream = nullptr;
};

/// @param pieceSize  how many characters a refill brings, at least 1; unbuffered ignores it
std::unique_ptr<SupplyBuffer> makeSupplyBuffer(Supply supply, const std::string& text,
                                               std::size_t pieceSize, Ending ending);

} // namespace test
