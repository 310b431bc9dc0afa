#include <connector/configuration/typed/detail/Scalars.hpp>

#include <connector/configuration/typed/detail/ListText.hpp>
#include <connector/configuration/typed/detail/TextNumbers.hpp>
#include <connector/configuration/typed/detail/Unicode.hpp>
#include <connector/configuration/typed/detail/UnitText.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace connector::configuration::detail {

namespace {

/// The least magnitude that rounds to no finite float: half a step beyond the greatest.
constexpr double floatOverflow = 0x1.ffffffp127;

/// Calls `read` with the text of a value that is one, of whatever width. 8-bit text is not copied.
template <typename Read>
bool readText(const OptionValue& value, Read read) {
    if (const auto* const text = boost::get<std::string>(&value))
        return read(*text);
    if (const auto* const text = boost::get<std::u16string>(&value)) {
        const std::optional<std::string> utf8 = strictUtf8(*text);
        return utf8 && read(*utf8);
    }
    return false;
}

bool isWhole(double number) {
    return std::isfinite(number) && std::trunc(number) == number;
}

/// Where the alternatives that are no flags or numbers begin.
constexpr int firstText = 4;

/// @return the value of an int, unsigned int or double that is an integer
std::optional<std::int64_t> integerOf(const OptionValue& value) {
    if (value.which() >= firstText)
        return std::nullopt;
    if (const auto* const number = boost::get<int>(&value))
        return *number;
    if (const auto* const number = boost::get<unsigned int>(&value))
        return *number;
    const auto* const number = boost::get<double>(&value);
    if (number != nullptr && isWhole(*number) && *number >= -0x1p63 && *number < 0x1p63)
        return static_cast<std::int64_t>(*number);
    return std::nullopt;
}

template <typename T>
std::vector<OptionValue> elementsOf(const std::vector<T>& list) {
    std::vector<OptionValue> elements;
    elements.reserve(list.size());
    for (const auto& element : list)
        elements.emplace_back(static_cast<const T&>(element));
    return elements;
}

/// The elements of any list, and nothing for scalars.
class Elements : public boost::static_visitor<std::optional<std::vector<OptionValue>>> {
public:
    template <typename T>
    result_type operator()(const std::vector<T>& list) const {
        return elementsOf(list);
    }
    template <typename T>
    result_type operator()(const T&) const {
        return std::nullopt;
    }
};

} // namespace

bool equalIgnoringCase(std::string_view left, std::string_view right) {
    const auto lower = [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A'))
                                                    : character;
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [lower](char a, char b) { return lower(a) == lower(b); });
}

std::optional<std::string> textOf(const OptionValue& value) {
    std::optional<std::string> result;
    readText(value, [&result](const std::string& text) {
        result = text;
        return true;
    });
    return result;
}

bool toBool(const OptionValue& value, bool& place) {
    constexpr std::string_view words[][2] = {
        {"false", "true"}, {"no", "yes"}, {"off", "on"}, {"0", "1"}};
    if (const auto* const flag = boost::get<bool>(&value)) {
        place = *flag;
        return true;
    }
    return readText(value, [&](const std::string& text) {
        for (const auto& pair : words) {
            for (const bool meaning : {false, true}) {
                if (equalIgnoringCase(text, pair[meaning ? 1 : 0])) {
                    place = meaning;
                    return true;
                }
            }
        }
        return false;
    });
}

bool toSigned(const OptionValue& value, std::int64_t least, std::int64_t greatest,
              std::int64_t& place) {
    std::int64_t number = 0;
    if (const std::optional<std::int64_t> integer = integerOf(value))
        number = *integer;
    else if (!readText(value, [&](const std::string& text) { return readSigned(text, number); }))
        return false;
    if (number < least || number > greatest)
        return false;
    place = number;
    return true;
}

bool toUnsigned(const OptionValue& value, std::uint64_t greatest, std::uint64_t& place) {
    std::uint64_t number = 0;
    const auto* const floating = boost::get<double>(&value);
    if (const std::optional<std::int64_t> integer = integerOf(value)) {
        if (*integer < 0)
            return false;
        number = static_cast<std::uint64_t>(*integer);
    } else if (floating != nullptr && isWhole(*floating) && *floating > 0 && *floating < 0x1p64) {
        number = static_cast<std::uint64_t>(*floating);
    } else if (!readText(value,
                         [&](const std::string& text) { return readUnsigned(text, number); })) {
        return false;
    }
    if (number > greatest)
        return false;
    place = number;
    return true;
}

bool toDouble(const OptionValue& value, double& place) {
    if (const auto* const number = boost::get<double>(&value))
        place = *number;
    else if (const auto* const integer = boost::get<int>(&value))
        place = *integer;
    else if (const auto* const count = boost::get<unsigned int>(&value))
        place = *count;
    else
        return readText(value, [&](const std::string& text) { return readFloating(text, place); });
    return true;
}

bool toFloat(const OptionValue& value, float& place) {
    if (value.which() >= firstText) // text is rounded once, not to a double first
        return readText(value, [&](const std::string& text) { return readFloating(text, place); });
    double number = 0;
    if (!toDouble(value, number) || (std::isfinite(number) && std::abs(number) >= floatOverflow))
        return false;
    constexpr double greatest = std::numeric_limits<float>::max();
    // What lies beyond the greatest float is undefined to convert, although it rounds to it.
    if (std::isfinite(number))
        number = std::clamp(number, -greatest, greatest);
    place = static_cast<float>(number);
    return true;
}

bool toPathText(const OptionValue& value, std::string& place) {
    return readText(value, [&place](const std::string& text) {
        if (text.empty() || !strictUtf16(text))
            return false;
        place = text;
        return true;
    });
}

bool toTicks(const OptionValue& value, std::uintmax_t numerator, std::uintmax_t denominator,
             std::int64_t least, std::uint64_t greatest, std::uint64_t& twosComplement) {
    return readText(value, [&](const std::string& text) {
        const std::optional<Ticks> ticks = readTicks(text, numerator, denominator);
        if (!ticks)
            return false;
        const std::uint64_t greatestBelowZero = ~static_cast<std::uint64_t>(least) + 1;
        if (ticks->count > (ticks->isNegative ? greatestBelowZero : greatest))
            return false;
        twosComplement = ticks->isNegative ? ~ticks->count + 1 : ticks->count;
        return true;
    });
}

bool toRoundedTicks(const OptionValue& value, std::uintmax_t numerator, std::uintmax_t denominator,
                    int precision, long double& place) {
    return readText(value, [&](const std::string& text) {
        const std::optional<long double> ticks =
            readRoundedTicks(text, numerator, denominator, precision);
        if (!ticks || !std::isfinite(*ticks))
            return false;
        place = *ticks;
        return true;
    });
}

bool toBytes(const OptionValue& value, std::uint64_t& place) {
    if (const auto* const number = boost::get<int>(&value)) {
        if (*number < 0)
            return false;
        place = static_cast<std::uint64_t>(*number);
        return true;
    }
    if (const auto* const number = boost::get<unsigned int>(&value)) {
        place = *number;
        return true;
    }
    return readText(value, [&place](const std::string& text) {
        const std::optional<std::uint64_t> bytes = readBytes(text);
        place = bytes.value_or(place);
        return bytes.has_value();
    });
}

std::optional<std::vector<OptionValue>> toItems(const OptionValue& value) {
    std::optional<std::vector<OptionValue>> items = boost::apply_visitor(Elements(), value);
    if (!items) {
        readText(value, [&items](const std::string& text) {
            items = elementsOf(readList(text));
            return true;
        });
    }
    return items;
}

} // namespace connector::configuration::detail
