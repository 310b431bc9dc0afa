#include <connector/sources/detail/Text.hpp>

#include <algorithm>

namespace connector::sources::detail {

namespace {

unsigned byteAt(std::string_view text, std::size_t offset) {
    return offset < text.size() ? static_cast<unsigned char>(text[offset]) : 0;
}

bool isBetween(unsigned byte, unsigned least, unsigned greatest) {
    return byte >= least && byte <= greatest;
}

/// @return the length in bytes of the character at the offset; 0 if it is invalid: overlong forms,
///         surrogates and anything above U+10FFFF (table 3-7 of the Unicode standard)
std::size_t characterLength(std::string_view text, std::size_t offset) {
    const unsigned first = byteAt(text, offset);
    const unsigned second = byteAt(text, offset + 1);
    const auto continues = [&](std::size_t distance) {
        return isBetween(byteAt(text, offset + distance), 0x80, 0xBF);
    };
    if (first < 0x80)
        return 1;
    if (isBetween(first, 0xC2, 0xDF))
        return continues(1) ? 2 : 0;
    if (isBetween(first, 0xE0, 0xEF)) {
        const unsigned least = first == 0xE0 ? 0xA0 : 0x80;
        const unsigned greatest = first == 0xED ? 0x9F : 0xBF;
        return isBetween(second, least, greatest) && continues(2) ? 3 : 0;
    }
    if (isBetween(first, 0xF0, 0xF4)) {
        const unsigned least = first == 0xF0 ? 0x90 : 0x80;
        const unsigned greatest = first == 0xF4 ? 0x8F : 0xBF;
        return isBetween(second, least, greatest) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

} // namespace

std::string_view checkedText(std::string_view bytes) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    const bool isMarked = bytes.substr(0, byteOrderMark.size()) == byteOrderMark;
    const std::string_view text = bytes.substr(isMarked ? byteOrderMark.size() : 0);
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark && isMarked)
        throw DocumentError({1, 1}, "A second byte order mark");
    for (std::size_t offset = 0; offset < text.size();) {
        const std::size_t length = characterLength(text, offset);
        if (length == 0)
            throw DocumentError(placeOf(text, offset), "The text is not valid UTF-8");
        offset += length;
    }
    return text;
}

Place placeOf(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const auto lines = std::count(before.begin(), before.end(), '\n');
    const std::size_t newline = before.rfind('\n');
    const std::size_t start = newline == std::string_view::npos ? 0 : newline + 1;
    return {static_cast<std::uint32_t>(lines + 1), static_cast<std::uint32_t>(offset - start + 1)};
}

std::size_t offsetOf(std::string_view text, Place place) {
    std::size_t start = 0;
    for (std::uint32_t line = 1; line < place.line; ++line)
        start = text.find('\n', start) + 1;
    return start + place.column - 1;
}

} // namespace connector::sources::detail
