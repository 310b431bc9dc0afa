#include <connector/configuration/typed/detail/Decimal.hpp>
#include <connector/configuration/typed/detail/UnitText.hpp>

#include <array>
#include <charconv>
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

std::optional<long double> readFloating(std::string_view number) {
    long double value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value,
                                              std::chars_format::fixed);
    if (error != std::errc{} || end != number.data() + number.size())
        return std::nullopt;
    return value;
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
                                            std::uintmax_t denominator) {
    if (text == "0")
        return 0.0L;
    const bool isNegative = takeSign(text);
    long double sum = 0;
    Parts parts(text);
    do {
        if (!parts.next())
            return std::nullopt;
        const std::optional<long double> number = readFloating(parts.number);
        if (!number)
            return std::nullopt;
        // One rounding for numbers in the duration's own unit: the factor is 1 then.
        sum += *number * (static_cast<long double>(parts.unit->nanoseconds) *
                          static_cast<long double>(denominator) /
                          (static_cast<long double>(numerator) * nanosecondsOfASecond));
    } while (!parts.atEnd());
    return isNegative ? -sum : sum;
}

std::optional<std::string> writeTicks(Ticks ticks, std::uintmax_t numerator,
                                      std::uintmax_t denominator) {
    const std::optional<std::uint64_t> nanoseconds =
        wholeQuotient({ticks.count, 0}, Wide{numerator} * nanosecondsOfASecond, denominator);
    if (!nanoseconds)
        return std::nullopt;
    if (*nanoseconds == 0)
        return "0s";
    std::string text(ticks.isNegative ? "-" : "");
    std::uint64_t rest = *nanoseconds;
    for (const Unit& unit : units) {
        if (rest >= unit.nanoseconds)
            text.append(std::to_string(rest / unit.nanoseconds)).append(unit.name);
        rest %= unit.nanoseconds;
    }
    return text;
}

std::string writeSeconds(double seconds) {
    std::array<char, 1100> buffer{}; // the least double has 1,074 digits behind the point
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), seconds,
                                            std::chars_format::fixed);
    return error == std::errc{} ? std::string(buffer.data(), end) + 's' : std::string("0s");
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
