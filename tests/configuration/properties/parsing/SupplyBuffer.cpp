#include "configuration/properties/parsing/SupplyBuffer.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace test {

namespace {

class PieceBuffer : public SupplyBuffer {
public:
    PieceBuffer(const std::string& text, std::size_t newPieceSize, InputEnd inputEnd)
        : SupplyBuffer(text, inputEnd), pieceSize(newPieceSize) {}

protected:
    int_type underflow() override {
        if (remaining() == 0)
            return end();
        char* const first = &text[supplied];
        const std::size_t count = std::min(pieceSize, remaining());
        setg(first, first, first + count);
        supplied += count;
        return traits_type::to_int_type(*first);
    }

private:
    const std::size_t pieceSize;
};

class ReusedBuffer : public SupplyBuffer {
public:
    ReusedBuffer(const std::string& text, std::size_t pieceSize, InputEnd inputEnd)
        : SupplyBuffer(text, inputEnd), memory(pieceSize, scribble) {}

protected:
    int_type underflow() override {
        std::fill(memory.begin(), memory.end(), scribble); // makes stale reads visible
        if (remaining() == 0)
            return end();
        const std::size_t count = text.copy(&memory[0], memory.size(), supplied);
        setg(&memory[0], &memory[0], &memory[0] + count);
        supplied += count;
        return traits_type::to_int_type(memory[0]);
    }

private:
    static constexpr char scribble = '?';
    std::string memory;
};

class UnbufferedBuffer : public SupplyBuffer {
public:
    using SupplyBuffer::SupplyBuffer;

protected:
    int_type underflow() override {
        return remaining() == 0 ? end() : traits_type::to_int_type(text[supplied]);
    }

    int_type uflow() override {
        return remaining() == 0 ? end() : traits_type::to_int_type(text[supplied++]);
    }
};

} // namespace

SupplyBuffer::int_type SupplyBuffer::end() {
    if (inputEnd == InputEnd::throwing)
        throw std::runtime_error("read error");
    if (inputEnd == InputEnd::settingBadBit)
        stream->setstate(std::ios_base::badbit);
    return traits_type::eof();
}

SupplyBuffer::pos_type SupplyBuffer::seekoff(off_type offset, std::ios_base::seekdir direction,
                                             std::ios_base::openmode) {
    if (offset != 0 || direction != std::ios_base::cur)
        return pos_type(off_type(-1));
    return pos_type(static_cast<off_type>(supplied) - (egptr() - gptr()));
}

std::unique_ptr<SupplyBuffer> makeSupplyBuffer(Supply supply, const std::string& text,
                                               std::size_t pieceSize, InputEnd inputEnd) {
    switch (supply) {
    case Supply::pieces:
        return std::make_unique<PieceBuffer>(text, pieceSize, inputEnd);
    case Supply::reused:
        return std::make_unique<ReusedBuffer>(text, pieceSize, inputEnd);
    case Supply::unbuffered:
        break;
    }
    return std::make_unique<UnbufferedBuffer>(text, inputEnd);
}

} // namespace test
