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
    bool isText = true; ///< whether a file can say it to both
};

std::string hex(unsigned number, int digits) {
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += "0123456789ABCDEF"[(number >> shift) & 15];
    return text;
}

bool isControl(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    const bool isC1 = first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
    return first < 0x20 || first == 0x7F || isC1;
}

unsigned codePointOf(std::string_view controlCharacter) {
    return static_cast<unsigned char>(controlCharacter.back());
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = utf8Length(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

Reading ofLibrary(const Comparison& files, const Segment& segment) {
    Reading reading;
    for (std::size_t i = segment.firstOfLibrary; i < segment.lastOfLibrary; ++i) {
        const LibraryProperty& property = files.library.properties[i];
        if (!property.isStored)
            continue;
        reading.properties.emplace_back(decoded(files.text, property.key),
                                        decoded(files.text, property.value));
        const auto& [key, value] = reading.properties.back();
        reading.isText = reading.isText && isUtf8(key) && isUtf8(value);
    }
    return reading;
}

Reading ofConvention(const Comparison& files, const Segment& segment) {
    Reading reading;
    for (std::size_t i = segment.firstOfConvention; i < segment.lastOfConvention; ++i) {
        const ConventionProperty& property = files.convention.properties[i];
        reading.properties.emplace_back(property.key.bytes, property.value.bytes);
        reading.isText =
            reading.isText && isUtf8(property.key.bytes) && isUtf8(property.value.bytes);
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

std::string properties(const Reading& reading) {
    if (reading.properties.empty())
        return "nothing";
    return list(reading, ", ", [](const auto& property) {
        return '"' + shown(property.first) + "\" = \"" + shown(property.second) + '"';
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
    if (hasLibrary && hasConvention)
        return "for both to agree, write " + lines(library) + " or " + lines(convention);
    if (hasLibrary || hasConvention)
        return "for both to agree, write " + lines(hasLibrary ? library : convention);
    return "no text says either to both";
}

} // namespace

std::string shown(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        if (result.size() >= longest)
            return result + "...";
        const std::size_t length = utf8Length(text.substr(i));
        if (length == 0)
            result += "<0x" + hex(static_cast<unsigned char>(text[i]), 2) + '>';
        else if (isControl(text.substr(i, length)))
            result += "<U+" + hex(codePointOf(text.substr(i, length)), 4) + '>';
        else
            result += text.substr(i, length);
        i += std::max<std::size_t>(length, 1);
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
    return "the library reads " + properties(library) + ", java.util.Properties " +
           (refused ? "refuses the file" : "reads " + properties(convention)) +
           (isHidden ? "" : "; " + advice(library, convention, refused));
}

} // namespace connector::configuration::properties::detail
