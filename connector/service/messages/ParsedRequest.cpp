#include <connector/service/messages/ParsedRequest.hpp>

#include <connector/service/text/JsonTokens.hpp>
#include <connector/service/text/JsonValidation.hpp>
#include <connector/service/text/Number.hpp>
#include <connector/service/text/Utf8.hpp>

#include <Poco/Exception.h>
#include <Poco/JSON/Parser.h>
#include <Poco/NumberParser.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

namespace connector::service {

namespace {

bool looksLikeNumber(std::string_view token) {
    return token.front() == '-' || (token.front() >= '0' && token.front() <= '9');
}

bool isDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

/// Removes the first character if it is one of these.
void skipOneOf(std::string_view characters, std::string_view& text) {
    if (!text.empty() && characters.find(text.front()) != characters.npos)
        text.remove_prefix(1);
}

/// Removes the digits at the front and returns them.
std::string_view skipDigits(std::string_view& text) {
    const std::string_view digits =
        text.substr(0, std::min(text.find_first_not_of("0123456789"), text.size()));
    text.remove_prefix(digits.size());
    return digits;
}

/// @return whether a token is a number in the syntax of JSON
bool isWellFormedNumber(std::string_view token) {
    skipOneOf("-", token);
    const std::string_view integer = skipDigits(token);
    if (integer.empty() || (integer.size() > 1 && integer.front() == '0'))
        return false;
    if (!token.empty() && token.front() == '.') {
        token.remove_prefix(1);
        if (skipDigits(token).empty())
            return false;
    }
    if (!token.empty() && (token.front() == 'e' || token.front() == 'E')) {
        token.remove_prefix(1);
        skipOneOf("+-", token);
        return isDigits(token);
    }
    return token.empty();
}

/// @return whether one of the parser's types can hold a number
bool isRepresentable(const std::string& number) {
    if (number.find_first_of(".eE") != number.npos) {
        double value = 0;
        return Poco::NumberParser::tryParseFloat(number, value);
    }
    // Not Poco::NumberParser, which overflows silently beyond 64 bits.
    return readNumber<std::int64_t>(number) || readNumber<std::uint64_t>(number);
}

/// @return the text with quotation marks around the numbers that are not representable
std::string withOversizedNumbersQuoted(std::string_view text) {
    std::string result;
    std::size_t copied = 0;
    const auto copyTo = [&](std::size_t end) {
        result += text.substr(copied, end - copied);
        copied = end;
    };
    JsonTokens tokens(text);
    while (!tokens.atEnd()) {
        const std::string_view token = tokens.current();
        const std::size_t start = tokens.start();
        const std::size_t end = tokens.end();
        tokens.next();
        // In place of a member's name, a number is an error that quotation marks would hide.
        if (!looksLikeNumber(token) || tokens.kind() == ':' || !isWellFormedNumber(token) ||
            isRepresentable(std::string(token)))
            continue;
        copyTo(start);
        result += '"';
        copyTo(end);
        result += '"';
    }
    copyTo(text.size());
    return result;
}

Poco::JSON::Object::Ptr parseObject(const std::string& text) {
    Poco::JSON::Parser parser;
    parser.setDepth(maxNesting);
    return parser.parse(text).extract<Poco::JSON::Object::Ptr>();
}

/// @param name  a JSON string; may contain escapes
bool isIdName(std::string_view name) {
    if (name == "\"id\"")
        return true;
    if (name.find('\\') == name.npos)
        return false;
    Poco::JSON::Parser parser;
    const auto array =
        parser.parse("[" + std::string(name) + "]").extract<Poco::JSON::Array::Ptr>();
    return array->getElement<std::string>(0) == "id";
}

/// Moves past a member's value to the comma or brace after it.
/// @return the tokens of the value, concatenated
std::string skipValue(JsonTokens& tokens) {
    std::string value;
    for (int depth = 0; !tokens.atEnd(); tokens.next()) {
        const char kind = tokens.kind();
        if (depth == 0 && (kind == ',' || kind == '}'))
            break;
        depth += kind == '{' || kind == '[' ? 1 : 0;
        depth -= kind == '}' || kind == ']' ? 1 : 0;
        value += tokens.current();
    }
    return value;
}

/// @param text  a valid JSON object
std::optional<std::string> findId(std::string_view text) {
    std::optional<std::string> id;
    JsonTokens tokens(text);
    for (tokens.next(); !tokens.atEnd() && tokens.kind() == '"'; tokens.next()) {
        const std::string_view name = tokens.current();
        tokens.next(); // the colon
        tokens.next();
        std::string value = skipValue(tokens);
        if (isIdName(name))
            id = std::move(value);
    }
    return id;
}

} // namespace

const Poco::JSON::Object::Ptr& ParsedRequest::content() const {
    if (object.isNull())
        throw std::invalid_argument("A request has at most 64 levels of nesting");
    return object;
}

ParsedRequest parseRequest(const std::string& text) {
    if (text.size() > maxRequestSize)
        throw std::invalid_argument("A request is at most 1 MiB long");
    if (!isUtf8(text))
        throw std::invalid_argument("Text is not valid UTF-8");
    if (JsonTokens(text).kind() != '{')
        throw std::invalid_argument("A request is a JSON object");
    try {
        const std::string parseable = withOversizedNumbersQuoted(text);
        if (!isNestedDeeper(parseable, maxNesting))
            return {parseObject(parseable), findId(text)};
        validateJson(parseable);
        return {nullptr, findId(text)};
    } catch (const Poco::Exception& error) {
        throw std::invalid_argument("Text is not valid JSON: " + error.message());
    }
}

bool isBlank(const std::string& text) {
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

} // namespace connector::service
