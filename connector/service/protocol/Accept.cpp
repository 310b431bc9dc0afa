#include <connector/service/protocol/Accept.hpp>

#include <boost/beast/core/string.hpp>

#include <algorithm>

namespace connector::service {

namespace {

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == text.npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// Removes the text before the separator, and the separator, from the front.
/// @return that text, without blanks around it
std::string_view takeUntil(char separator, std::string_view& text) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view front = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return trimmed(front);
}

bool equals(std::string_view left, std::string_view right) {
    return boost::beast::iequals({left.data(), left.size()}, {right.data(), right.size()});
}

/// @return how exactly a range names a type: 0 not at all, 3 fully
int exactness(std::string_view range, std::string_view type) {
    if (equals(range, type))
        return 3;
    const std::size_t slash = type.find('/');
    if (range.size() == slash + 2 &&
        equals(range.substr(0, slash + 1), type.substr(0, slash + 1)) && range.back() == '*')
        return 2;
    return range == "*/*" ? 1 : 0;
}

/// @param parameters  behind the type, as in "q=0.5"
bool hasWeight(std::string_view parameters) {
    while (!parameters.empty()) {
        const std::string_view parameter = takeUntil(';', parameters);
        if (equals(parameter.substr(0, 2), "q="))
            return parameter.find_first_not_of("0.", 2) != parameter.npos;
    }
    return true;
}

} // namespace

bool accepts(std::string_view header, std::string_view type) {
    if (trimmed(header).empty())
        return true;
    bool isAccepted = false;
    int best = 1;
    while (!header.empty()) {
        std::string_view range = takeUntil(',', header);
        const int exact = exactness(takeUntil(';', range), type);
        if (exact < best)
            continue;
        best = exact;
        isAccepted = hasWeight(range);
    }
    return isAccepted;
}

bool isJsonType(std::string_view header) {
    return equals(takeUntil(';', header), "application/json");
}

} // namespace connector::service
