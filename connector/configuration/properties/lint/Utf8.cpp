#include <connector/configuration/properties/lint/Utf8.hpp>

namespace connector::configuration::properties::detail {

namespace {

struct Lead {
    std::size_t length; ///< of the character; 0 if no character begins like this
    unsigned char low;  ///< the bounds of the second byte
    unsigned char high;
};

Lead leadOf(unsigned char byte) {
    if (byte < 0x80)
        return {1, 0, 0};
    if (byte < 0xC2 || byte > 0xF4)
        return {0, 0, 0};
    if (byte < 0xE0)
        return {2, 0x80, 0xBF};
    if (byte < 0xF0) // E0: no overlong forms; ED: no surrogates
        return {3, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    return {4, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
}

} // namespace

void appendUtf8(std::string& text, char32_t codePoint) {
    const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    const auto tail = [&](int shift) { append(0x80 | ((codePoint >> shift) & 0x3F)); };
    if (codePoint <= 0x7F) {
        append(codePoint);
    } else if (codePoint <= 0x7FF) {
        append(0xC0 | (codePoint >> 6));
        tail(0);
    } else if (codePoint <= 0xFFFF) {
        append(0xE0 | (codePoint >> 12));
        tail(6);
        tail(0);
    } else {
        append(0xF0 | (codePoint >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

std::size_t utf8Length(std::string_view text) {
    const auto byteAt = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const Lead lead = text.empty() ? Lead{0, 0, 0} : leadOf(byteAt(0));
    if (lead.length > text.size())
        return 0;
    for (std::size_t i = 1; i < lead.length; ++i) {
        const bool isFirst = i == 1;
        if (byteAt(i) < (isFirst ? lead.low : 0x80) || byteAt(i) > (isFirst ? lead.high : 0xBF))
            return 0;
    }
    return lead.length;
}

} // namespace connector::configuration::properties::detail
