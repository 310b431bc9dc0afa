#include "values/ValueReading.hpp"

#include "values/WrongArguments.hpp"

#include <connector/service/text/Number.hpp>
#include <connector/service/text/Secrets.hpp>
#include <connector/service/text/Utf8.hpp>

#include <fl/i18n/codecvt.hpp>

#include <Poco/Dynamic/Var.h>
#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Parser.h>

#include <cmath>
#include <limits>

namespace connector_config {

using connector::service::isUtf8;
using connector::service::readNumber;
using connector::service::Secrets;

namespace {

using Poco::Dynamic::Var;
using Poco::JSON::Array;

std::optional<bool> readBool(const std::string& text) {
    if (text != "true" && text != "false")
        return std::nullopt;
    return text == "true";
}

std::optional<double> readDouble(const std::string& text) {
    const std::optional<double> number = readNumber<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<std::u16string> readUtf16(const std::string& text) {
    if (!isUtf8(text))
        return std::nullopt;
    return fl::i18n::to_ustring(text, fl::i18n::codecvt_string_to_ustring("UTF-8", true));
}

/// @return the element if it has exactly this type; nothing is converted
template <typename T>
std::optional<T> exactly(const Var& element) {
    if (element.isEmpty() || element.type() != typeid(T))
        return std::nullopt;
    return element.extract<T>();
}

template <typename T>
struct Element;

template <>
struct Element<bool> {
    static std::optional<bool> read(const Var& element) { return exactly<bool>(element); }
};

template <>
struct Element<std::string> {
    static std::optional<std::string> read(const Var& element) {
        return exactly<std::string>(element);
    }
};

template <>
struct Element<std::u16string> {
    static std::optional<std::u16string> read(const Var& element) {
        const std::optional<std::string> text = exactly<std::string>(element);
        return text ? readUtf16(*text) : std::nullopt;
    }
};

template <>
struct Element<double> {
    static std::optional<double> read(const Var& element) {
        // The parser reads a number without a fraction as an integer, a large one as unsigned.
        if (const auto number = exactly<Poco::Int64>(element))
            return static_cast<double>(*number);
        if (const auto number = exactly<Poco::UInt64>(element))
            return static_cast<double>(*number);
        return exactly<double>(element);
    }
};

template <typename T>
struct Integer {
    static std::optional<T> read(const Var& element) {
        const auto number = exactly<Poco::Int64>(element);
        if (!number || *number < std::numeric_limits<T>::min() ||
            *number > std::numeric_limits<T>::max())
            return std::nullopt;
        return static_cast<T>(*number);
    }
};
template <>
struct Element<int> : Integer<int> {};
template <>
struct Element<unsigned int> : Integer<unsigned int> {};

Array::Ptr parseArray(const std::string& text) {
    Poco::JSON::Parser parser;
    parser.setDepth(2); // rejects nested arrays early, before they can exhaust the stack
    const Var document = parser.parse(text);
    return document.type() == typeid(Array::Ptr) ? document.extract<Array::Ptr>() : Array::Ptr();
}

template <typename T>
std::optional<std::vector<T>> readArray(const std::string& text) {
    const Array::Ptr array = isUtf8(text) ? parseArray(text) : Array::Ptr();
    if (array.isNull())
        return std::nullopt;
    std::vector<T> elements;
    for (const Var& var : *array) {
        std::optional<T> element = Element<T>::read(var);
        if (!element)
            return std::nullopt;
        elements.push_back(std::move(*element));
    }
    return elements;
}

template <typename T>
std::optional<OptionValue> asValue(std::optional<T> read) {
    if (!read)
        return std::nullopt;
    return OptionValue(std::move(*read));
}

std::optional<OptionValue> tryRead(ValueType type, const std::string& text) {
    switch (type) {
    case ValueType::Bool:
        return asValue(readBool(text));
    case ValueType::Int:
        return asValue(readNumber<int>(text));
    case ValueType::Uint:
        return asValue(readNumber<unsigned int>(text));
    case ValueType::Double:
        return asValue(readDouble(text));
    case ValueType::Ustring:
        return asValue(readUtf16(text));
    case ValueType::String:
        return OptionValue(text);
    case ValueType::BoolArray:
        return asValue(readArray<bool>(text));
    case ValueType::IntArray:
        return asValue(readArray<int>(text));
    case ValueType::UintArray:
        return asValue(readArray<unsigned int>(text));
    case ValueType::DoubleArray:
        return asValue(readArray<double>(text));
    case ValueType::StringArray:
        return asValue(readArray<std::string>(text));
    case ValueType::UstringArray:
        return asValue(readArray<std::u16string>(text));
    }
    return std::nullopt; // unreachable
}

} // namespace

OptionValue readValue(const std::string& key, ValueType type, const std::string& text,
                      bool isSecret) {
    try {
        if (std::optional<OptionValue> value = tryRead(type, text))
            return std::move(*value);
    } catch (const Poco::Exception&) {
        // Not JSON. The failure below is clearer than the parser's, which is about byte positions.
    }
    throw WrongArguments("Value of " + key + " does not convert to " + typeName(type) + ": " +
                         (isSecret ? Secrets::mask : text));
}

} // namespace connector_config
