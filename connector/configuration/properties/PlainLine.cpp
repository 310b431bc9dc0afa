#include <connector/configuration/properties/PlainLine.hpp>

#include <array>
#include <cstring>
#include <initializer_list>

namespace connector::configuration::detail {

namespace {

/// Bounds the search for a line feed. Without it, each line of a large text that has only carriage
/// returns would be searched to the end of the text.
constexpr std::size_t longest = 1024;

/// A set of characters; a test for membership is one memory access.
class CharacterSet {
public:
    constexpr CharacterSet(std::initializer_list<char> characters) {
        for (const char c : characters)
            members[static_cast<unsigned char>(c)] = true;
    }
    constexpr bool has(char c) const { return members[static_cast<unsigned char>(c)]; }

private:
    std::array<bool, 256> members{};
};

// The line ends in a line feed, so no search has to check for the end of the text: a line feed is
// not in the first two sets, and is in the third.
constexpr CharacterSet blanks{' ', '\t'};
constexpr CharacterSet assignments{':', '='};
constexpr CharacterSet endsOfKey{':', '=', ' ', '\t', '\n'};

/// @return the first such character, or null
const char* find(char c, const char* first, const char* last) {
    return static_cast<const char*>(std::memchr(first, c, static_cast<std::size_t>(last - first)));
}

std::string_view between(const char* first, const char* last) {
    return {first, static_cast<std::size_t>(last - first)};
}

/// @return where the line ends that begins at the start of the text, or null if it is not plain
const char* endOfPlainLine(std::string_view text) {
    const char* const begin = text.data();
    const char* end = find('\n', begin, begin + text.size());
    if (end == nullptr)
        return nullptr;
    if (end != begin && end[-1] == '\r')
        --end; // the line feed behind it then counts as an empty line
    const bool isSpecial = *begin == '#' || *begin == '!' || find('\\', begin, end) != nullptr ||
                           find('\r', begin, end) != nullptr;
    return isSpecial ? nullptr : end;
}

const char* endOfKey(const char* position) {
    while (!endsOfKey.has(*position))
        ++position;
    return position;
}

const char* behindSeparator(const char* position) {
    do
        ++position;
    while (blanks.has(*position));
    if (!assignments.has(*position))
        return position;
    ++position;
    return blanks.has(*position) ? position + 1 : position;
}

} // namespace

PlainLine plainLine(std::string_view text) {
    if (text.empty())
        return {};
    const char* const begin = text.data();
    const char* const lineEnd = endOfPlainLine(text.substr(0, longest));
    if (lineEnd == nullptr)
        return {};
    const char* const keyEnd = endOfKey(begin);
    if (keyEnd >= lineEnd)
        return {}; // the key goes on in the next line
    return {between(begin, keyEnd), between(behindSeparator(keyEnd), lineEnd),
            between(begin, lineEnd).size() + 1};
}

} // namespace connector::configuration::detail
