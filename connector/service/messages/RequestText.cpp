#include <connector/service/messages/RequestText.hpp>

#include <connector/service/text/DeepJson.hpp>
#include <connector/service/text/JsonTokens.hpp>
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

bool isNumber(std::string_view token) {
    return token.front() == '-' || (token.front() >= '0' && token.front() <= '9');
}

bool isDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

void removePrefix(std::string_view& text, std::string_view oneOf) {
    if (!text.empty() && oneOf.find(text.front()) != oneOf.npos)
        text.remove_prefix(1);
}

/// Takes the digits from the front. @return them
std::string_view takeDigits(std::string_view& text) {
    const std::string_view digits =
        text.substr(0, std::min(text.find_first_not_of("0123456789"), text.size()));
    text.remove_prefix(digits.size());
    return digits;
}

/// @return whether a token is a number as JSON has them
bool isWellFormedNumber(std::string_view token) {
    removePrefix(token, "-");
    const std::string_view integer = takeDigits(token);
    if (integer.empty() || (integer.size() > 1 && integer.front() == '0'))
        return false;
    if (!token.empty() && token.front() == '.') {
        token.remove_prefix(1);
        if (takeDigits(token).empty())
            return false;
    }
    if (!token.empty() && (token.front() == 'e' || token.front() == 'E')) {
        token.remove_prefix(1);
        removePrefix(token, "+-");
        return isDigits(token);
    }
    return token.empty();
}

/// @return whether the parser has a type for a number
bool fits(const std::string& number) {
    if (number.find_first_of(".eE") != number.npos) {
        double value = 0;
        return Poco::NumberParser::tryParseFloat(number, value);
    }
    // Poco's own answer is no help here: beyond 64 bits it wraps around.
    return readNumber<std::int64_t>(number) || readNumber<std::uint64_t>(number);
}

/// @return the text with quotes around the numbers that the parser has no type for
std::string withNumbersThatFit(std::string_view text) {
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
        // A name must be a string, so the quotes must not make one.
        if (!isNumber(token) || tokens.kind() == ':' || !isWellFormedNumber(token) ||
            fits(std::string(token)))
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
    parser.setDepth(deepestNesting);
    return parser.parse(text).extract<Poco::JSON::Object::Ptr>();
}

/// A name may be written with escapes.
bool meansId(std::string_view name) {
    if (name == "\"id\"")
        return true;
    if (name.find('\\') == name.npos)
        return false;
    Poco::JSON::Parser parser;
    const auto array =
        parser.parse("[" + std::string(name) + "]").extract<Poco::JSON::Array::Ptr>();
    return array->getElement<std::string>(0) == "id";
}

/// Takes a value, which stands between the current token and the next comma or end of its object.
/// @return its tokens, one behind the other
std::string takeValue(JsonTokens& tokens) {
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

/// @param text  of a valid JSON object
std::optional<std::string> findId(std::string_view text) {
    std::optional<std::string> id;
    JsonTokens tokens(text);
    for (tokens.next(); !tokens.atEnd() && tokens.kind() == '"'; tokens.next()) {
        const std::string_view name = tokens.current();
        tokens.next(); // the colon
        tokens.next();
        std::string value = takeValue(tokens);
        if (meansId(name))
            id = std::move(value);
    }
    return id;
}

} // namespace

const Poco::JSON::Object::Ptr& RequestText::content() const {
    if (object.isNull())
        throw std::invalid_argument("A request has at most 64 levels of nesting");
    return object;
}

RequestText readRequest(const std::string& text) {
    if (text.size() > longestRequest)
        throw std::invalid_argument("A request is at most 1 MiB long");
    if (!isUtf8(text))
        throw std::invalid_argument("Text is not valid UTF-8");
    if (JsonTokens(text).kind() != '{')
        throw std::invalid_argument("A request is a JSON object");
    try {
        const std::string fitting = withNumbersThatFit(text);
        if (!isDeeper(fitting, deepestNesting))
            return {parseObject(fitting), findId(text)};
        requireJson(fitting);
        return {nullptr, findId(text)};
    } catch (const Poco::Exception& error) {
        throw std::invalid_argument("Text is not valid JSON: " + error.message());
    }
}

bool isBlank(const std::string& text) {
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

} // namespace connector::service
