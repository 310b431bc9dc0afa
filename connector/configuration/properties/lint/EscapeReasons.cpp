#include <connector/configuration/properties/lint/EscapeReasons.hpp>

#include <connector/configuration/properties/lint/Characters.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace connector::configuration::properties::detail {

namespace {

const char malformed[] = "\\u is not followed by four hexadecimal digits";

/// @return the escapes that the library has in the segment, in the order of the file
Pieces escapesOfLibrary(const Comparison& files, const Segment& segment) {
    Pieces escapes;
    const auto add = [&escapes](const Pieces& pieces) {
        std::copy_if(pieces.begin(), pieces.end(), std::back_inserter(escapes),
                     [](const Piece& piece) { return piece.kind != Piece::Kind::Plain; });
    };
    for (std::size_t i = segment.firstOfLibrary; i < segment.lastOfLibrary; ++i) {
        const LibraryProperty& property = files.library.properties[i];
        if (!property.isStored)
            continue;
        add(property.key);
        add(property.value);
    }
    return escapes;
}

/// @return the escape at the offset, or null if there is none
const Piece* escapeAt(const Pieces& escapes, std::size_t offset) {
    const auto piece =
        std::lower_bound(escapes.begin(), escapes.end(), offset,
                         [](const Piece& left, std::size_t right) { return left.offset < right; });
    return piece != escapes.end() && piece->offset == offset ? &*piece : nullptr;
}

std::string controlText(char letter) {
    return std::string("\\") + letter + " is the letter " + letter +
           ", not a control character, and \\\\ is a backslash";
}

/// Compares what both read as an escape. @return a text, empty if they agree
std::string difference(std::string_view text, const Piece& piece) {
    if (piece.kind == Piece::Kind::Escape)
        return controlText(text[piece.offset + 1]);
    if (!isComplete(text, piece))
        return malformed;
    return isSurrogate(unitOf(text, piece)) ? "a half of a surrogate pair is stored on its own"
                                            : "";
}

} // namespace

std::vector<Reason> escapeReasons(const Comparison& files, const Segment& segment) {
    using Kind = ConventionEscape::Kind;
    const Pieces ofLibrary = escapesOfLibrary(files, segment);
    const auto& escapes = files.convention.escapes;
    auto escape = std::lower_bound(
        escapes.begin(), escapes.end(), segment.begin,
        [](const ConventionEscape& left, std::size_t right) { return left.offset < right; });
    std::vector<Reason> reasons;
    for (; escape != escapes.end() && escape->offset < segment.end; ++escape) {
        const Piece* const piece = escapeAt(ofLibrary, escape->offset);
        std::string text;
        if (escape->kind == Kind::Malformed)
            text = malformed;
        else if (piece != nullptr)
            text = difference(files.text, *piece);
        if (!text.empty())
            reasons.push_back({escape->offset,
                               escape->kind == Kind::Control ? Rule::Escape : Rule::UnicodeEscape,
                               std::move(text)});
    }
    return reasons;
}

} // namespace connector::configuration::properties::detail
