#include <connector/configuration/properties/lint/PropertyReasons.hpp>

#include <connector/configuration/properties/lint/Characters.hpp>

#include <algorithm>
#include <utility>

namespace connector::configuration::properties::detail {

namespace {

constexpr std::string_view whiteSpace = " \t\f";
constexpr std::string_view lineBreaks = "\r\n";

} // namespace

PropertyReasons::PropertyReasons(const Comparison& newFiles, const Segment& newSegment)
    : files(newFiles), text(newFiles.text), segment(newSegment),
      property(newFiles.library.properties[newSegment.firstOfLibrary]) {
}

std::vector<Reason> PropertyReasons::find() {
    const bool isInStep = followLineStart() && followKey() && followSeparator() && followValue();
    if (!property.isStored)
        addLost(isInStep);
    return std::move(reasons);
}

/// Blanks begin a separator here. java.util.Properties skips them, and form feeds.
bool PropertyReasons::followLineStart() {
    std::size_t start = property.start;
    const bool isMarked = start == 0 && text.substr(0, byteOrderMark.size()) == byteOrderMark;
    if (isMarked) {
        add(0, Rule::ByteOrderMark, "the byte order mark joins the first key");
        start = byteOrderMark.size();
    }
    const std::size_t content = std::min(text.find_first_not_of(whiteSpace, start), text.size());
    const bool isLine = content < text.size() && !isLineBreak(text[content]);
    if (isMarked)
        return isLine && content == start && !isCommentSign(text[content]);
    if (content == start)
        return true;
    const bool isFormFeed = text[start] == '\f';
    if (isLine && isCommentSign(text[content]))
        add(start, Rule::Comment, "a comment begins only in column 1");
    else if (isLine && isAssignment(text[content]) && !isFormFeed)
        return true; // both have an empty key
    else if (!isFormFeed)
        add(start, Rule::EmptyKey, "a blank at the start of the line makes the key empty");
    else if (isLine)
        add(start, Rule::Difference, "a form feed at the start of the line belongs to the key");
    else
        add(start, Rule::NoSeparator, "a line without a separator runs on into the next");
    return false;
}

bool PropertyReasons::followKey() {
    for (const Piece& piece : property.key) {
        switch (piece.kind) {
        case Piece::Kind::Plain:
            if (!followKeyRun(piece.offset, piece.offset + piece.length))
                return false;
            break;
        case Piece::Kind::Escape:
            if (isLineBreak(text[piece.offset + 1])) {
                add(piece.offset, Rule::Continuation,
                    "a key is not continued: the line break belongs to it");
                return false;
            }
            break;
        case Piece::Kind::Unicode:
            if (!isComplete(text, piece))
                return false; // it may have swallowed anything
            break;
        }
    }
    return true;
}

bool PropertyReasons::followKeyRun(std::size_t first, std::size_t last) {
    for (std::size_t i = first; i < last; ++i) {
        if (text[i] == '\f') {
            addFormFeedInKey(i);
            return false;
        }
        if (isLineBreak(text[i])) {
            addJoinedLines();
            return false;
        }
    }
    return true;
}

/// java.util.Properties ends the key at a form feed.
void PropertyReasons::addFormFeedInKey(std::size_t offset) {
    if (property.keyEnd < text.find_first_of(lineBreaks, offset))
        add(offset, Rule::Difference, "a form feed belongs to the key");
    else
        add(property.start, Rule::NoSeparator, "a line without a separator runs on into the next");
}

/// Each line of the key is a property of its own in java.util.Properties. The last one ends with a
/// separator, or with the file.
void PropertyReasons::addJoinedLines() {
    std::size_t start = property.start;
    for (std::size_t end = text.find_first_of(lineBreaks, start); end < property.keyEnd;
         end = text.find_first_of(lineBreaks, start)) {
        const bool isFirst = start == property.start;
        if (isFirst || conventionHasPropertyIn(start, end))
            add(start, Rule::NoSeparator, "a line without a separator runs on into the next");
        start = end + 1;
    }
}

bool PropertyReasons::followSeparator() {
    if (property.keyEnd == text.size())
        return true;
    phase = isAssignment(text[property.keyEnd]) ? Phase::Assigned : Phase::Separator;
    for (std::size_t i = property.keyEnd + 1; i < property.valueStart; ++i) {
        if (!isAssignment(text[i]))
            continue;
        if (phase == Phase::Assigned) {
            add(i, Rule::SecondSeparator, "the second separator is dropped");
            phase = Phase::Value;
        } else {
            phase = Phase::Assigned;
        }
    }
    return true;
}

bool PropertyReasons::followValue() {
    std::size_t position = property.valueStart;
    for (const Piece& piece : property.value) {
        const bool isContinued = piece.offset != position;
        if (!followContinuations(position, piece.offset))
            return false;
        if (piece.kind == Piece::Kind::Plain)
            followValueRun(piece, isContinued);
        else
            phase = Phase::Value;
        if (piece.kind == Piece::Kind::Unicode && !isComplete(text, piece))
            return false;
        position = piece.offset + piece.length;
    }
    return true;
}

/// A blank line ends a continued value in java.util.Properties; here it is skipped.
bool PropertyReasons::followContinuations(std::size_t position, std::size_t end) {
    while (position < end) { // at a backslash before a line break
        const std::size_t backslash = position;
        position += text.compare(position + 1, 2, "\r\n") == 0 ? 3 : 2;
        position = std::min(text.find_first_not_of(' ', position), end);
        if (position < end && isLineBreak(text[position])) {
            add(backslash, Rule::Continuation, "a blank line does not end a continued value");
            return false;
        }
    }
    return true;
}

void PropertyReasons::followValueRun(const Piece& piece, bool isContinued) {
    std::size_t i = piece.offset;
    const std::size_t end = piece.offset + piece.length;
    if (isContinued && isWhiteSpace(text[i])) {
        add(i, Rule::Continuation, "a tab or form feed before a continued line is not skipped");
        i = std::min(text.find_first_not_of(whiteSpace, i), end);
    }
    bool isReported = false;
    for (; i < end && phase != Phase::Value; ++i) {
        if (isWhiteSpace(text[i])) {
            if (!isReported && isBlankToEndOfLine(i))
                add(i, Rule::TrailingBlank, "the blank at the end of the line is the value");
            else if (!isReported)
                add(i, Rule::LeadingBlank, "the blank before the value belongs to it");
            isReported = true;
        } else if (phase == Phase::Separator && isAssignment(text[i])) {
            add(i, Rule::SecondSeparator, "the separator belongs to the value");
            phase = Phase::Assigned;
        } else {
            phase = Phase::Value;
        }
    }
}

/// The end of the file came too early for the library, which drops what is pending.
void PropertyReasons::addLost(bool isInStep) {
    const std::size_t end = endOfValue();
    const bool isContinued = end + 1 < text.size() && text[end] == '\\';
    if (isInStep && isContinued) {
        reasons.push_back(
            {end, Rule::Continuation, "a continuation at the end of the file loses the property"});
        return;
    }
    std::size_t start = property.start;
    if (!isInStep && segment.firstOfConvention != segment.lastOfConvention)
        start = std::max(start, files.convention.properties[segment.lastOfConvention - 1].start);
    reasons.push_back({start, Rule::LostAtEnd, "the last property of the file is lost"});
}

std::size_t PropertyReasons::endOfValue() const {
    if (property.value.empty())
        return property.valueStart;
    return property.value.back().offset + property.value.back().length;
}

bool PropertyReasons::isBlankToEndOfLine(std::size_t offset) const {
    const std::size_t content = text.find_first_not_of(whiteSpace, offset);
    return content == std::string_view::npos || isLineBreak(text[content]);
}

/// @return whether nothing but line breaks follows
bool PropertyReasons::isEndOfFile(std::size_t offset) const {
    return text.find_first_not_of(lineBreaks, offset) == std::string_view::npos;
}

bool PropertyReasons::conventionHasPropertyIn(std::size_t first, std::size_t last) const {
    const auto& properties = files.convention.properties;
    const auto found =
        std::lower_bound(properties.begin(), properties.end(), first,
                         [](const ConventionProperty& candidate, std::size_t offset) {
                             return candidate.start < offset;
                         });
    return found != properties.end() && found->start < last;
}

/// Of a property that is lost, only what is wrong before its last line is of interest.
void PropertyReasons::add(std::size_t offset, Rule rule, const char* reason) {
    const bool isOfLastLine =
        isEndOfFile(std::min(text.find_first_of(lineBreaks, offset), text.size()));
    if (property.isStored || !isOfLastLine)
        reasons.push_back({offset, rule, reason});
}

} // namespace connector::configuration::properties::detail
