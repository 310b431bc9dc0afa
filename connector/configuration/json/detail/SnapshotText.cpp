#include <connector/configuration/json/detail/SnapshotText.hpp>

#include <connector/configuration/json/detail/Utf.hpp>

#include <Poco/Base64Decoder.h>
#include <Poco/Base64Encoder.h>
#include <Poco/Exception.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSONString.h>

#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace connector::configuration::detail {

namespace {

using Poco::Dynamic::Var;

bool isUtf8(const std::string& text) {
    try {
        toUtf16(text);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

std::string toBase64(const std::string& bytes) {
    std::ostringstream text;
    Poco::Base64Encoder encoder(text);
    encoder.rdbuf()->setLineLength(0);
    encoder << bytes;
    encoder.close();
    return text.str();
}

std::optional<std::string> fromBase64(const std::string& text) {
    std::istringstream in(text);
    Poco::Base64Decoder decoder(in);
    try {
        std::string bytes{std::istreambuf_iterator<char>(decoder), {}};
        if (toBase64(bytes) == text) // the decoder skips blanks and line breaks
            return bytes;
    } catch (const Poco::DataFormatException&) {
        // no base64
    }
    return std::nullopt;
}

} // namespace

std::string textJson(const std::string& text) {
    return isUtf8(text) ? Poco::toJSON(text) : R"({"base64": ")" + toBase64(text) + "\"}";
}

std::string numberJson(double number) {
    if (std::isnan(number))
        return "\"nan\"";
    if (std::isinf(number))
        return number > 0 ? "\"inf\"" : "\"-inf\"";
    std::array<char, 32> buffer; // the longest number has 24 characters
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
    std::string text(buffer.data(), end);
    // Digits without a point would be read as an integer, which has no negative zero.
    if (text.find('.') == text.npos)
        text.insert(std::min(text.find('e'), text.size()), ".0");
    return text;
}

std::optional<std::string> textOf(const Var& json) {
    if (json.type() == typeid(std::string))
        return json.extract<std::string>();
    if (json.type() != typeid(Poco::JSON::Object::Ptr))
        return std::nullopt;
    const Var bytes = json.extract<Poco::JSON::Object::Ptr>()->get("base64");
    if (bytes.type() != typeid(std::string))
        return std::nullopt;
    return fromBase64(bytes.extract<std::string>());
}

std::optional<double> doubleOf(const Var& json) {
    if (json.type() == typeid(double))
        return json.extract<double>();
    if (json.type() == typeid(Poco::Int64))
        return static_cast<double>(json.extract<Poco::Int64>());
    if (json.type() == typeid(Poco::UInt64))
        return static_cast<double>(json.extract<Poco::UInt64>());
    const std::string text = json.type() == typeid(std::string) ? json.extract<std::string>() : "";
    if (text == "nan")
        return std::numeric_limits<double>::quiet_NaN();
    if (text == "inf" || text == "-inf")
        return text == "inf" ? HUGE_VAL : -HUGE_VAL;
    return std::nullopt;
}

} // namespace connector::configuration::detail
