#include <connector/service/text/JsonTokens.hpp>

#include <algorithm>

namespace connector::service {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view marks = "{}[],:";
constexpr std::string_view endsOfRun = " \t\r\n{}[],:\"";

} // namespace

char JsonTokens::kind() const {
    if (token.empty())
        return ' ';
    const bool isMark = token.front() == '"' || marks.find(token.front()) != marks.npos;
    return isMark ? token.front() : ' ';
}

void JsonTokens::next() {
    position = std::min(text.find_first_not_of(blanks, end()), text.size());
    token = text.substr(position, position < text.size() ? lengthOfToken() : 0);
}

std::size_t JsonTokens::lengthOfToken() const {
    if (text[position] == '"')
        return lengthOfString();
    if (marks.find(text[position]) != marks.npos)
        return 1;
    return std::min(text.find_first_of(endsOfRun, position), text.size()) - position;
}

std::size_t JsonTokens::lengthOfString() const {
    std::size_t i = position + 1;
    while (i < text.size() && text[i] != '"')
        i += text[i] == '\\' ? 2 : 1;
    return std::min(i + 1, text.size()) - position;
}

} // namespace connector::service
