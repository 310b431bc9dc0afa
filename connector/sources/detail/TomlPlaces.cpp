#include <connector/sources/detail/TomlPlaces.hpp>

namespace connector::sources::detail {

TomlPlaces::TomlPlaces(std::string_view newText) : text(newText), lines{0} {
    for (std::size_t newline = text.find('\n'); newline != std::string_view::npos;
         newline = text.find('\n', newline + 1))
        lines.push_back(newline + 1);
}

Place TomlPlaces::of(std::uint32_t line, std::uint32_t character) {
    if (line == 0 || line > lines.size())
        return {};
    if (line != lastLine || character < lastCharacter) {
        lastLine = line;
        lastCharacter = 1;
        lastOffset = lines[line - 1];
    }
    for (; lastCharacter < character && lastOffset < text.size(); ++lastCharacter) {
        do
            ++lastOffset;
        while (lastOffset < text.size() &&
               (static_cast<unsigned char>(text[lastOffset]) & 0xC0) == 0x80);
    }
    return {line, static_cast<std::uint32_t>(lastOffset - lines[line - 1] + 1)};
}

std::string_view TomlPlaces::from(Place place) const {
    return text.substr(lines[place.line - 1] + place.column - 1);
}

} // namespace connector::sources::detail
