#include <connector/service/text/Utf8.hpp>

#include <boost/locale/utf.hpp>

namespace connector::service {

Character firstCharacter(std::string_view text) {
    if (static_cast<unsigned char>(text.front()) < 0x80) // most are, and decoding takes longer
        return {text.substr(0, 1), static_cast<unsigned char>(text.front()), true};
    namespace utf = boost::locale::utf;
    const char* next = text.data();
    const utf::code_point codePoint =
        utf::utf_traits<char>::decode(next, text.data() + text.size());
    if (codePoint == utf::illegal || codePoint == utf::incomplete)
        return {text.substr(0, 1), 0, false};
    return {text.substr(0, static_cast<std::size_t>(next - text.data())), codePoint, true};
}

bool isUtf8(std::string_view text) {
    bool valid = true;
    forEachCharacter(text, [&valid](const Character& character) { valid &= character.valid; });
    return valid;
}

bool isControl(char32_t codePoint) {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint <= 0x9F) ||
           codePoint == 0x061C ||                        // Arabic letter mark
           codePoint == 0x200E || codePoint == 0x200F || // left-to-right and right-to-left mark
           (codePoint >= 0x2028 && codePoint <= 0x202E) ||
           (codePoint >= 0x2066 && codePoint <= 0x2069);
}

} // namespace connector::service
