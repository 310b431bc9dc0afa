#include <connector/service/text/JsonTokens.hpp>

#include <algorithm>

namespace connector::service {

namespace {

constexpr std::string_view whitespace = " \t\r\n";
constexpr std::string_view punctuation = "{}[],:";
constexpr std::string_view runDelimiters = " \t\r\n{}[],:\"";

} // namespace

char JsonTokens::kind() const {
    if (token.empty())
        return ' ';
    const bool hasKind =
        token.front() == '"' || punctuation.find(token.front()) != punctuation.npos;
    return hasKind ? token.front() : ' ';
}

void JsonTokens::next() {
    position = std::min(text.find_first_not_of(whitespace, end()), text.size());
    token = text.substr(position, position < text.size() ? tokenLength() : 0);
}

std::size_t JsonTokens::tokenLength() const {
    if (text[position] == '"')
        return stringLength();
    if (punctuation.find(text[position]) != punctuation.npos)
        return 1;
    return std::min(text.find_first_of(runDelimiters, position), text.size()) - position;
}

std::size_t JsonTokens::stringLength() const {
    std::size_t i = position + 1;
    while (i < text.size() && text[i] != '"')
        i += text[i] == '\\' ? 2 : 1;
    return std::min(i + 1, text.size()) - position;
}

} // namespace connector::service
