#include <connector/etcd/detail/ValueText.hpp>

#include <connector/configuration/detail/TypeTags.hpp>
#include <connector/configuration/json/detail/Utf.hpp>
#include <connector/etcd/detail/JsonObject.hpp>
#include <connector/etcd/detail/Utf8.hpp>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/get.hpp>
#include <boost/variant/static_visitor.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <utility>

namespace connector::etcd::detail {

namespace {

using configuration::OptionValue;
namespace tags = configuration::detail;

/// Converts a scalar of JSON, exactly or not at all.
template <typename T>
struct Exactly {
    static std::optional<T> from(const JsonScalar& scalar) {
        const auto* const value = std::get_if<T>(&scalar);
        return value != nullptr ? std::optional<T>(*value) : std::nullopt;
    }
};

template <typename Integer>
std::optional<Integer> integerFrom(const JsonScalar& scalar) {
    using Limits = std::numeric_limits<Integer>;
    if (const auto* const value = std::get_if<std::uint64_t>(&scalar))
        return *value <= static_cast<std::uint64_t>(Limits::max())
                   ? std::optional<Integer>(static_cast<Integer>(*value))
                   : std::nullopt;
    if (const auto* const value = std::get_if<std::int64_t>(&scalar))
        return *value >= std::int64_t{Limits::min()} && *value <= std::int64_t{Limits::max()}
                   ? std::optional<Integer>(static_cast<Integer>(*value))
                   : std::nullopt;
    return std::nullopt;
}

template <>
struct Exactly<int> {
    static std::optional<int> from(const JsonScalar& scalar) { return integerFrom<int>(scalar); }
};

template <>
struct Exactly<unsigned int> {
    static std::optional<unsigned int> from(const JsonScalar& scalar) {
        return integerFrom<unsigned int>(scalar);
    }
};

/// @return the double that is exactly this integer
template <typename Integer>
std::optional<double> exactDouble(Integer value) {
    const auto number = static_cast<double>(value);
    // The comparison with the limit keeps the conversion back defined.
    const bool fits = number < static_cast<double>(std::numeric_limits<Integer>::max());
    return fits && static_cast<Integer>(number) == value ? std::optional<double>(number)
                                                         : std::nullopt;
}

std::optional<double> namedDouble(const std::string& name) {
    using Limits = std::numeric_limits<double>;
    if (name == "inf")
        return Limits::infinity();
    if (name == "-inf")
        return -Limits::infinity();
    return name == "nan" ? std::optional<double>(Limits::quiet_NaN()) : std::nullopt;
}

/// A decimal fraction is the nearest double; an integer beyond 64 bits must be exact.
std::optional<double> doubleOf(const JsonNumber& number) {
    if (number.text.find_first_of(".eE") != std::string::npos)
        return number.value;
    std::array<char, 400> exact{}; // the greatest double has 309 digits
    std::snprintf(exact.data(), exact.size(), "%.0f", number.value);
    return number.text == exact.data() ? std::optional<double>(number.value) : std::nullopt;
}

template <>
struct Exactly<double> {
    static std::optional<double> from(const JsonScalar& scalar) {
        if (const auto* const number = std::get_if<JsonNumber>(&scalar))
            return doubleOf(*number);
        if (const auto* const value = std::get_if<std::int64_t>(&scalar))
            return exactDouble(*value);
        if (const auto* const value = std::get_if<std::uint64_t>(&scalar))
            return exactDouble(*value);
        const auto* const name = std::get_if<std::string>(&scalar);
        return name != nullptr ? namedDouble(*name) : std::nullopt;
    }
};

template <>
struct Exactly<std::u16string> {
    static std::optional<std::u16string> from(const JsonScalar& scalar) {
        const auto* const text = std::get_if<std::string>(&scalar);
        if (text == nullptr)
            return std::nullopt;
        return configuration::detail::toUtf16(*text); // the parser has checked the UTF-8
    }
};

template <typename T>
std::optional<OptionValue> readScalar(const JsonObject& object) {
    if (object.isArray)
        return std::nullopt;
    const std::optional<T> value = Exactly<T>::from(object.payload.front());
    return value ? std::optional<OptionValue>(*value) : std::nullopt;
}

template <typename T>
std::optional<OptionValue> readArray(const JsonObject& object) {
    if (!object.isArray)
        return std::nullopt;
    std::vector<T> values;
    values.reserve(object.payload.size());
    for (const JsonScalar& element : object.payload) {
        std::optional<T> value = Exactly<T>::from(element);
        if (!value)
            return std::nullopt;
        values.push_back(*std::move(value));
    }
    return OptionValue(std::move(values));
}

using Reader = std::optional<OptionValue> (*)(const JsonObject&);

/// In the order of the tags.
constexpr std::array<Reader, tags::typeTags.size()> readers = {
    readScalar<bool>,
    readScalar<int>,
    readScalar<unsigned int>,
    readScalar<double>,
    readScalar<std::u16string>,
    readScalar<std::string>,
    readArray<bool>,
    readArray<int>,
    readArray<unsigned int>,
    readArray<double>,
    readArray<std::string>,
    readArray<std::u16string>,
};

std::optional<OptionValue> readTyped(const JsonObject& object) {
    const bool isWhole = object.types == 1 && object.values == 1 && object.others == 0 &&
                         object.isTypeText && !object.isNested && !object.isBeyondRange;
    const bool hasPayload = object.isArray || object.payload.size() == 1;
    const auto tag = std::find(tags::typeTags.begin(), tags::typeTags.end(), object.type);
    if (!isWhole || !hasPayload || tag == tags::typeTags.end())
        return std::nullopt;
    return readers[static_cast<std::size_t>(tag - tags::typeTags.begin())](object);
}

/// @return whether the first character, after the white space of JSON, is that of an object. Most
///         texts are not parsed because of this.
bool maybeObject(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text[first] == '{';
}

/// Makes the payload.
class PayloadWriter : public boost::static_visitor<nlohmann::ordered_json> {
public:
    template <typename Scalar>
    nlohmann::ordered_json operator()(const Scalar& value) const {
        return value;
    }
    nlohmann::ordered_json operator()(double value) const {
        if (std::isnan(value))
            return "nan";
        if (std::isinf(value))
            return value > 0 ? "inf" : "-inf";
        return value;
    }
    nlohmann::ordered_json operator()(const std::u16string& value) const {
        try {
            return configuration::detail::toUtf8(value);
        } catch (const std::runtime_error& error) {
            throw std::invalid_argument(error.what());
        }
    }
    template <typename Element>
    nlohmann::ordered_json operator()(const std::vector<Element>& values) const {
        auto array = nlohmann::ordered_json::array();
        for (const Element& value : values) // a copy, because of std::vector<bool>
            array.push_back((*this)(value));
        return array;
    }
};

std::string writeTyped(const OptionValue& value) {
    nlohmann::ordered_json object;
    object["type"] = std::string(tags::typeTagOf(value));
    object["value"] = boost::apply_visitor(PayloadWriter(), value);
    try {
        return object.dump();
    } catch (const nlohmann::json::type_error&) {
        throw std::invalid_argument("Text is not valid UTF-8");
    }
}

} // namespace

std::optional<OptionValue> readValue(std::string_view text) {
    if (!isUtf8(text))
        return std::nullopt;
    if (maybeObject(text)) {
        const std::optional<JsonObject> object = readJsonObject(text);
        const bool hasType =
            object && object->isObject && (object->types > 0 || object->isBeyondRange);
        if (hasType)
            return readTyped(*object);
    }
    return OptionValue(std::string(text));
}

std::string writeValue(const OptionValue& value) {
    const auto* const text = boost::get<std::string>(&value);
    if (text == nullptr)
        return writeTyped(value);
    const std::optional<OptionValue> raw = readValue(*text);
    if (raw && *raw == value)
        return *text;
    return writeTyped(value);
}

} // namespace connector::etcd::detail
