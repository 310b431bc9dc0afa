#include "display/TextWidth.hpp"

#include <connector/service/text/Utf8.hpp>

#include <algorithm>

#include <locale.h>
#include <wchar.h>

namespace connector_config {

using connector::service::Character;
using connector::service::firstCharacter;
using connector::service::forEachCharacter;

namespace {

constexpr std::string_view ellipsis = "…";

/// Sets a UTF-8 locale for the calling thread during its lifetime, because keys and values are
/// UTF-8 whatever the user's locale is.
class Utf8Locale {
public:
    Utf8Locale() : previous(uselocale(utf8())) {}
    ~Utf8Locale() { uselocale(previous); }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

private:
    /// @return null if the system has no such locale; uselocale then changes nothing
    static locale_t utf8() {
        static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t());
        return locale;
    }

    const locale_t previous;
};

std::size_t widthOfCharacter(const Character& character) {
    const int width = wcwidth(static_cast<wchar_t>(character.codePoint));
    return width < 0
               ? 1
               : static_cast<std::size_t>(width); // an unknown character is usually shown as a box
}

} // namespace

std::size_t widthOf(std::string_view text) {
    const Utf8Locale unicode;
    std::size_t width = 0;
    forEachCharacter(
        text, [&width](const Character& character) { width += widthOfCharacter(character); });
    return width;
}

std::string cutToWidth(std::string_view text, std::size_t width) {
    if (widthOf(text) <= width)
        return std::string(text);
    if (width == 0)
        return "";
    const Utf8Locale unicode;
    std::size_t left = width - 1; // one column for the ellipsis
    std::size_t kept = 0;
    while (true) {
        const Character character = firstCharacter(text.substr(kept));
        const std::size_t needed = widthOfCharacter(character);
        if (needed > left)
            return std::string(text.substr(0, kept)) + std::string(ellipsis);
        left -= needed;
        kept += character.bytes.size();
    }
}

} // namespace connector_config
