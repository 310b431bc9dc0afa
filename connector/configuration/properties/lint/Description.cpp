#include <connector/configuration/properties/lint/Description.hpp>

#include <connector/configuration/properties/lint/Characters.hpp>
#include <connector/configuration/properties/lint/Utf8.hpp>
#include <connector/configuration/properties/lint/Writing.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace connector::configuration::properties::detail {

namespace {

constexpr std::size_t longest = 60; // bytes of a key, a value or a line
constexpr std::size_t most = 3;     // properties

/// What one of the readers has in a segment.
struct Reading {
    std::vector<std::pair<std::string, std::string>> properties;
    bool isText = true;   ///< whether a file can say it to both
    bool hasLost = false; ///< whether the end of the file loses a property
};

std::string hex(unsigned number, int digits) {
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += "0123456789ABCDEF"[(number >> shift) & 15];
    return text;
}

unsigned byteAt(std::string_view text, std::size_t i) {
    return static_cast<unsigned char>(text[i]);
}

bool isControl(std::string_view character) {
    const unsigned first = byteAt(character, 0);
    return first < 0x20 || first == 0x7F || (first == 0xC2 && byteAt(character, 1) < 0xA0);
}

constexpr std::size_t lengthOfHalf = 3;

/// @return whether the text begins with a half of a surrogate pair in the layout of UTF-8
bool isHalf(std::string_view text) {
    return text.size() >= lengthOfHalf && text[0] == '\xED' && byteAt(text, 1) >= 0xA0 &&
           utf8Length(text) == 0;
}

/// @param character  well-formed, a half, or a single byte that is neither
std::string shownCharacter(std::string_view character) {
    if (isHalf(character))
        return "<U+" +
               hex(0xD000 | (byteAt(character, 1) & 0x3F) << 6 | (byteAt(character, 2) & 0x3F), 4) +
               '>';
    if (utf8Length(character) == 0)
        return "<0x" + hex(byteAt(character, 0), 2) + '>';
    if (character == byteOrderMark)
        return "<U+FEFF>"; // it has no width
    if (isControl(character))
        return "<U+" + hex(byteAt(character, character.size() - 1), 4) + '>';
    return std::string(character);
}

/// @return whether escapes make bytes that are no UTF-8
bool isNoText(std::string_view text, const Pieces& pieces) {
    return std::any_of(pieces.begin(), pieces.end(), [text](const Piece& piece) {
        return piece.kind == Piece::Kind::Unicode &&
               (isSurrogate(unitOf(text, piece)) || splitsCharacter(text, piece));
    });
}

Reading ofLibrary(const Comparison& files, const Segment& segment) {
    Reading reading;
    for (std::size_t i = segment.firstOfLibrary; i < segment.lastOfLibrary; ++i) {
        const LibraryProperty& property = files.library.properties[i];
        reading.hasLost = reading.hasLost || !property.isStored;
        if (!property.isStored)
            continue;
        reading.properties.emplace_back(decoded(files.text, property.key),
                                        decoded(files.text, property.value));
        reading.isText = reading.isText && !isNoText(files.text, property.key) &&
                         !isNoText(files.text, property.value);
    }
    return reading;
}

Reading ofConvention(const Comparison& files, const Segment& segment) {
    Reading reading;
    for (std::size_t i = segment.firstOfConvention; i < segment.lastOfConvention; ++i) {
        const ConventionProperty& property = files.convention.properties[i];
        reading.properties.emplace_back(property.key.bytes, property.value.bytes);
        reading.isText = reading.isText && !property.key.hasHalf && !property.value.hasHalf;
    }
    return reading;
}

bool isRefused(const Comparison& files, const Segment& segment) {
    return std::any_of(files.convention.escapes.begin(), files.convention.escapes.end(),
                       [&segment](const ConventionEscape& escape) {
                           return escape.kind == ConventionEscape::Kind::Malformed &&
                                  escape.offset >= segment.begin && escape.offset < segment.end;
                       });
}

bool hasSecret(const Reading& reading, const std::function<bool(std::string_view)>& isSecret) {
    return std::any_of(reading.properties.begin(), reading.properties.end(),
                       [&isSecret](const auto& property) { return isSecret(property.first); });
}

void hideValues(Reading& reading) {
    for (auto& property : reading.properties)
        property.second = hiddenValue;
}

template <typename Show>
std::string list(const Reading& reading, const char* between, Show show) {
    std::string text;
    for (std::size_t i = 0; i < std::min(most, reading.properties.size()); ++i)
        text += (i == 0 ? "" : between) + show(reading.properties[i]);
    return text + (reading.properties.size() > most ? " ..." : "");
}

/// @param hasHalf  whether three bytes may be a half of a surrogate pair
std::string properties(const Reading& reading, bool hasHalf) {
    if (reading.properties.empty())
        return "nothing";
    return list(reading, ", ", [hasHalf](const auto& property) {
        return '"' + shown(property.first, hasHalf) + "\" = \"" + shown(property.second, hasHalf) +
               '"';
    });
}

std::string lines(const Reading& reading) {
    if (reading.properties.empty())
        return "a comment";
    return list(reading, " and ", [](const auto& property) {
        return shown(written(property.first, property.second));
    });
}

/// @return how to write the one or the other meaning
std::string advice(const Reading& library, const Reading& convention, bool isConventionRefused) {
    const bool hasLibrary = library.isText;
    const bool hasConvention = convention.isText && !isConventionRefused;
    const std::string former = lines(library) + " for both to read the former";
    const std::string latter = lines(convention) + (library.hasLost ? " and a line break" : "") +
                               " for both to read the latter";
    if (hasLibrary && hasConvention)
        return "write " + former + ", or " + latter;
    if (hasLibrary || hasConvention)
        return "write " + (hasLibrary ? former : latter);
    return "no file can make both agree on either";
}

} // namespace

std::string shown(std::string_view text, bool hasHalf) {
    std::string result;
    while (!text.empty()) {
        if (result.size() >= longest)
            return result + "...";
        const std::size_t length =
            hasHalf && isHalf(text) ? lengthOfHalf : std::max<std::size_t>(utf8Length(text), 1);
        result += shownCharacter(text.substr(0, length));
        text.remove_prefix(length);
    }
    return result;
}

std::string describe(const Comparison& files, const Segment& segment,
                     const std::function<bool(std::string_view)>& isSecret) {
    Reading library = ofLibrary(files, segment);
    Reading convention = ofConvention(files, segment);
    const bool isHidden = hasSecret(library, isSecret) || hasSecret(convention, isSecret);
    if (isHidden) {
        hideValues(library);
        hideValues(convention);
    }
    const bool refused = isRefused(files, segment);
    return "the library reads " + properties(library, false) + ", java.util.Properties " +
           (refused ? "refuses the file" : "reads " + properties(convention, !convention.isText)) +
           (isHidden ? "" : "; " + advice(library, convention, refused));
}

} // namespace connector::configuration::properties::detail
