#include <connector/configuration/typed/detail/Decimal.hpp>
#include <connector/configuration/typed/detail/UnitText.hpp>

#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace connector::configuration::detail {

namespace {

constexpr std::uint64_t nanosecondsOfASecond = 1'000'000'000;

struct Unit {
    std::string_view name;
    std::uint64_t nanoseconds;
};

constexpr std::array<Unit, 7> units{{{"d", 86'400 * nanosecondsOfASecond},
                                     {"h", 3'600 * nanosecondsOfASecond},
                                     {"m", 60 * nanosecondsOfASecond},
                                     {"s", nanosecondsOfASecond},
                                     {"ms", 1'000'000},
                                     {"us", 1'000},
                                     {"ns", 1}}};

/// Takes the parts of a duration off the front of its text, one number with its unit at a time.
class Parts {
public:
    explicit Parts(std::string_view newText) : rest(newText) {}

    bool atEnd() const { return rest.empty(); }

    /// @return false when what follows is no part of a duration
    bool next() {
        number = rest.substr(0, leadingNumber(rest));
        rest.remove_prefix(number.size());
        const std::string_view name = rest.substr(0, rest.find_first_of("0123456789"));
        rest.remove_prefix(name.size());
        const bool isWhole = number.find('.') == std::string_view::npos;
        while (nextUnit < units.size() && units[nextUnit].name != name)
            ++nextUnit;
        if (number.empty() || nextUnit == units.size() || !(isWhole || atEnd()))
            return false;
        unit = &units[nextUnit++]; // each unit once, from large to small
        return true;
    }

    std::string_view number;
    const Unit* unit = nullptr;

private:
    std::string_view rest;
    std::size_t nextUnit = 0;
};

/// @return whether there was one
bool takeSign(std::string_view& text) {
    if (text.empty() || text.front() != '-')
        return false;
    text.remove_prefix(1);
    return true;
}

/// @return sum + number, where the number is the one that may have a fraction
std::optional<Decimal> add(const Decimal& sum, const Decimal& number, std::uint64_t nanoseconds) {
    Decimal total{sum.digits, number.scale};
    for (std::size_t tens = 0; tens < number.scale && total.digits != 0; ++tens) {
        if (__builtin_mul_overflow(total.digits, Wide{10}, &total.digits))
            return std::nullopt;
    }
    Wide product = 0;
    if (__builtin_mul_overflow(number.digits, Wide{nanoseconds}, &product) ||
        __builtin_add_overflow(total.digits, product, &total.digits))
        return std::nullopt;
    return total;
}

std::optional<Decimal> readNanoseconds(std::string_view text) {
    Decimal sum;
    Parts parts(text);
    do {
        if (!parts.next())
            return std::nullopt;
        const std::optional<Decimal> number = readDecimal(parts.number);
        const std::optional<Decimal> newSum =
            number ? add(sum, *number, parts.unit->nanoseconds) : std::nullopt;
        if (!newSum)
            return std::nullopt;
        sum = *newSum;
    } while (!parts.atEnd());
    return sum;
}

template <typename T>
std::optional<long double> readAs(std::string_view number) {
    T value = 0;
    const char* const end = number.data() + number.size();
    const auto [rest, error] = std::from_chars(number.data(), end, value, std::chars_format::fixed);
    return error == std::errc{} && rest == end ? std::optional<long double>(value) : std::nullopt;
}

/// @param precision  in binary digits
std::optional<long double> readFloating(std::string_view number, int precision) {
    if (precision == std::numeric_limits<float>::digits)
        return readAs<float>(number);
    if (precision == std::numeric_limits<double>::digits)
        return readAs<double>(number);
    return readAs<long double>(number);
}

std::string digitsOf(Wide number) {
    std::string digits;
    do
        digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(number % 10)));
    while ((number /= 10) != 0);
    return digits;
}

/// @return the digits of rest / divisor after the point; nothing when they never end
std::optional<std::string> fractionDigits(Wide rest, Wide divisor) {
    constexpr std::size_t most = 64; // a power of two of 64 bits ends by then
    std::string digits;
    for (; rest != 0; rest %= divisor) {
        if (digits.size() == most)
            return std::nullopt;
        rest *= 10;
        digits += static_cast<char>('0' + static_cast<int>(rest / divisor));
    }
    return digits;
}

bool hasPeriod(const Unit& unit, std::uintmax_t numerator, std::uintmax_t denominator) {
    return Wide{unit.nanoseconds} * denominator == Wide{numerator} * nanosecondsOfASecond;
}

} // namespace

std::optional<Ticks> readTicks(std::string_view text, std::uintmax_t numerator,
                               std::uintmax_t denominator) {
    if (text == "0")
        return Ticks{false, 0};
    const bool isNegative = takeSign(text);
    const std::optional<Decimal> nanoseconds = readNanoseconds(text);
    if (!nanoseconds)
        return std::nullopt;
    const std::optional<std::uint64_t> count =
        wholeQuotient(*nanoseconds, denominator, Wide{numerator} * nanosecondsOfASecond);
    if (!count)
        return std::nullopt;
    return Ticks{isNegative, *count};
}

std::optional<long double> readRoundedTicks(std::string_view text, std::uintmax_t numerator,
                                            std::uintmax_t denominator, int precision) {
    if (text == "0")
        return 0.0L;
    const bool isNegative = takeSign(text);
    long double sum = 0;
    Parts parts(text);
    do {
        if (!parts.next())
            return std::nullopt;
        const bool isAlone = sum == 0 && parts.atEnd();
        const bool isOwnUnit = hasPeriod(*parts.unit, numerator, denominator);
        const std::optional<long double> number = readFloating(
            parts.number,
            isAlone && isOwnUnit ? precision : std::numeric_limits<long double>::digits);
        if (!number)
            return std::nullopt;
        sum += *number * (static_cast<long double>(parts.unit->nanoseconds) *
                          static_cast<long double>(denominator) /
                          (static_cast<long double>(numerator) * nanosecondsOfASecond));
    } while (!parts.atEnd());
    return isNegative ? -sum : sum;
}

std::optional<std::string> writeTicks(Ticks ticks, std::uintmax_t numerator,
                                      std::uintmax_t denominator) {
    Wide scaled = 0;
    if (__builtin_mul_overflow(Wide{numerator} * nanosecondsOfASecond, Wide{ticks.count}, &scaled))
        return std::nullopt;
    const std::optional<std::string> fraction = fractionDigits(scaled % denominator, denominator);
    if (!fraction)
        return std::nullopt;
    std::string text;
    Wide rest = scaled / denominator;
    for (const Unit& unit : units) {
        const bool hasFraction = unit.nanoseconds == 1 && !fraction->empty();
        if (rest >= unit.nanoseconds || hasFraction)
            text.append(digitsOf(rest / unit.nanoseconds))
                .append(hasFraction ? '.' + *fraction : std::string())
                .append(unit.name);
        rest %= unit.nanoseconds;
    }
    return text.empty() ? "0s" : (ticks.isNegative ? "-" : "") + text;
}

std::string writeRoundedTicks(double count, std::uintmax_t numerator, std::uintmax_t denominator) {
    std::string_view unitName = "s";
    double written = count * (static_cast<double>(numerator) / static_cast<double>(denominator));
    for (const Unit& unit : units) {
        if (hasPeriod(unit, numerator, denominator)) {
            unitName = unit.name;
            written = count;
        }
    }
    std::array<char, 1100> buffer{}; // the least double has 1,074 digits after the point
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), written,
                                            std::chars_format::fixed);
    return std::string(buffer.data(), error == std::errc{} ? end : buffer.data()).append(unitName);
}

std::string durationPattern() {
    std::string larger;
    std::string alternatives;
    for (const Unit& unit : units) {
        const std::string name(unit.name);
        alternatives += (alternatives.empty() ? "" : "|") + larger + "[0-9]+(\\.[0-9]+)?" + name;
        larger += "([0-9]+" + name + ")?";
    }
    return "^(0|-?(" + alternatives + "))$";
}

} // namespace connector::configuration::detail
