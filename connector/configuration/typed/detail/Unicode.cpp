#include <connector/configuration/typed/detail/Unicode.hpp>

#include <fl/i18n/codecvt.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace connector::configuration::detail {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// @return how many bytes a sequence has that begins with this one; 1 for what begins none
std::size_t sequenceLength(unsigned char first) {
    if (first >= 0xF0)
        return 4;
    if (first >= 0xE0)
        return 3;
    return first >= 0xC0 ? 2 : 1;
}

/// @return whether code point and length belong together: no surrogate, nothing overlong
bool isScalar(std::uint32_t code, std::size_t length) {
    constexpr std::array<std::uint32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
    return code >= least[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

/// @return the length of the well-formed sequence at the beginning; 0 if there is none
std::size_t leadingSequence(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = sequenceLength(first);
    if (length == 1)
        return first < 0x80 ? 1 : 0;
    if (length > text.size() || first > 0xF4)
        return 0;
    std::uint32_t code = first & (0x7Fu >> length);
    for (const char character : text.substr(1, length - 1)) {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte & 0xC0) != 0x80)
            return 0;
        code = code << 6 | (byte & 0x3Fu);
    }
    return isScalar(code, length) ? length : 0;
}

bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

} // namespace

std::optional<std::string> strictUtf8(const std::u16string& text) {
    try {
        return fl::i18n::to_string(text, fl::i18n::codecvt_ustring_to_string("UTF-8", true));
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

std::optional<std::u16string> strictUtf16(const std::string& text) {
    try {
        return fl::i18n::to_ustring(text, fl::i18n::codecvt_string_to_ustring("UTF-8", true));
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

std::string anyUtf8(const std::u16string& text) {
    std::u16string mended = text;
    for (std::size_t i = 0; i < mended.size(); ++i) {
        if (isHighSurrogate(mended[i]) && i + 1 < mended.size() && isLowSurrogate(mended[i + 1]))
            ++i;
        else if (isHighSurrogate(mended[i]) || isLowSurrogate(mended[i]))
            mended[i] = u'\uFFFD';
    }
    return strictUtf8(mended).value_or(std::string());
}

std::string wellFormedUtf8(std::string_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = leadingSequence(text);
        utf8 += length == 0 ? replacement : text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return utf8;
}

} // namespace connector::configuration::detail
