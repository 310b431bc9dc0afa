/// The constraints of a declared option.
#pragma once

#include <connector/configuration/typed/detail/Facets.hpp>
#include <connector/configuration/typed/detail/Secrets.hpp>
#include <connector/configuration/typed/detail/Texts.hpp>
#include <connector/configuration/typed/detail/Writing.hpp>

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace connector::configuration::detail {

/// The payload of a value as messages show it; only written when a message needs it.
class ShownValue {
public:
    ShownValue(const std::string& newKey, const OptionValue& newValue)
        : key(newKey), value(newValue) {}

    std::string text() const { return shownValue(key, value); }

private:
    const std::string& key;
    const OptionValue& value;
};

/// A check for a member of one type, with the type erased.
struct Check {
    /// @param member  points to the value
    /// @return the problem; empty when there is none
    std::function<std::string(const void* member, const ShownValue& shown)> problem;
    Facets facets; ///< the part that a JSON Schema can express
};

/// A bound or a choice as messages have it: numbers and text bare, the rest as in a file.
template <typename T>
std::string bare(const T& value) {
    return Writing<T>::text(value).value_or(std::string());
}

template <typename A, typename B>
inline constexpr bool areIntegers =
    std::is_integral_v<A>&& std::is_integral_v<B> && !isOneOf<A, bool> && !isOneOf<B, bool>;

/// The order of the numbers themselves: -1 is less than 1u.
template <typename A, typename B>
bool isLess(const A& left, const B& right) {
    if constexpr (areIntegers<A, B> && std::is_signed_v<A> && !std::is_signed_v<B>)
        return left < 0 || static_cast<std::make_unsigned_t<A>>(left) < right;
    else if constexpr (areIntegers<A, B> && !std::is_signed_v<A> && std::is_signed_v<B>)
        return right >= 0 && left < static_cast<std::make_unsigned_t<B>>(right);
    else
        return left < right;
}

template <typename A, typename B>
bool isSame(const A& left, const B& right) {
    if constexpr (std::is_arithmetic_v<A> && std::is_arithmetic_v<B>)
        return !isLess(left, right) && !isLess(right, left);
    else
        return left == right;
}

/// Whether the operators exist that a check uses. Asked before they are used: a compiler that
/// misses one lists every other one that it knows.
template <typename A, typename B, typename = void>
struct AreOrdered : std::false_type {};
template <typename A, typename B>
struct AreOrdered<A, B,
                  std::void_t<decltype(std::declval<const A&>() < std::declval<const B&>()),
                              decltype(std::declval<const A&>() == std::declval<const B&>())>>
    : std::true_type {};

template <typename A, typename B, typename = void>
struct AreComparable : std::false_type {};
template <typename A, typename B>
struct AreComparable<A, B,
                     std::void_t<decltype(std::declval<const A&>() == std::declval<const B&>())>>
    : std::true_type {};

template <typename T, typename = void>
struct CanBeEmpty : std::false_type {};
template <typename T>
struct CanBeEmpty<T, std::void_t<decltype(std::declval<const T&>().empty())>> : std::true_type {};

/// The bounds of a JSON Schema, within those of the type.
template <typename T, typename Bound>
void setBound(Facets& facets, const char* name, const Bound& bound, const T& limit,
              bool isBeyondLimit) {
    if constexpr (std::is_arithmetic_v<Bound>) {
        if (const auto json = isBeyondLimit ? Writing<T>::json(limit) : Writing<Bound>::json(bound))
            facets.set(name, *json);
    }
}

template <typename Low, typename High>
struct Range {
    Low low;
    High high;

    template <typename T>
    Check checkFor() const {
        constexpr bool fits = AreOrdered<Low, T>::value && AreOrdered<T, High>::value;
        static_assert(fits, "the bounds of inRange cannot be compared with the option's type: "
                            "std::chrono::seconds(1) for a duration, ByteSize{1} for a byte size");
        if constexpr (fits)
            return checkOf<T>();
        else
            return {};
    }

private:
    template <typename T>
    Check checkOf() const {
        const std::string text = "must be between " + bare(low) + " and " + bare(high) + ": ";
        Check check;
        check.problem = [range = *this, text](const void* member, const ShownValue& shown) {
            const T& value = *static_cast<const T*>(member);
            // A value that is not a number is outside of every range.
            const bool isInside = (isLess(range.low, value) || isSame(range.low, value)) &&
                                  (isLess(value, range.high) || isSame(value, range.high)) &&
                                  value == value;
            return isInside ? std::string() : text + shown.text();
        };
        if constexpr (std::is_arithmetic_v<T>) {
            using Limits = std::numeric_limits<T>;
            setBound<T>(check.facets, "minimum", low, Limits::lowest(),
                        isLess(low, Limits::lowest()));
            setBound<T>(check.facets, "maximum", high, Limits::max(), isLess(Limits::max(), high));
        }
        return check;
    }
};

template <typename Value>
struct Choice {
    std::vector<Value> values;

    template <typename T>
    Check checkFor() const {
        constexpr bool fits = AreComparable<T, Value>::value;
        static_assert(fits, "the values of oneOf cannot be compared with the option's type");
        if constexpr (fits)
            return checkOf<T>();
        else
            return {};
    }

private:
    template <typename T>
    Check checkOf() const {
        std::string names, json;
        for (const Value& value : values) {
            names.append(names.empty() ? "" : ", ").append(bare(value));
            json.append(json.empty() ? "" : ",")
                .append(Writing<Value>::json(value).value_or("null"));
        }
        Check check;
        check.facets = {{"enum", '[' + json + ']'}};
        check.problem = [choice = *this, names](const void* member, const ShownValue& shown) {
            const T& value = *static_cast<const T*>(member);
            for (const Value& allowed : choice.values) {
                if (isSame(value, allowed))
                    return std::string();
            }
            return "must be one of " + names + ": " + shown.text();
        };
        return check;
    }
};

struct NotEmpty {
    template <typename T>
    Check checkFor() const {
        static_assert(CanBeEmpty<T>::value, "notEmpty is for text, paths and lists");
        if constexpr (CanBeEmpty<T>::value)
            return checkOf<T>();
        else
            return {};
    }

private:
    template <typename T>
    Check checkOf() const {
        Check check;
        check.problem = [](const void* member, const ShownValue&) {
            return static_cast<const T*>(member)->empty() ? texts::empty : std::string();
        };
        const std::string type = Writing<T>::facets().all().front().second;
        check.facets = {{type == "\"array\"" ? "minItems" : "minLength", "1"}};
        return check;
    }
};

template <typename T, typename Candidate, typename = void>
struct HasCheck : std::false_type {};
template <typename T, typename Candidate>
struct HasCheck<T, Candidate,
                std::void_t<decltype(std::declval<const Candidate&>().template checkFor<T>())>>
    : std::true_type {};

/// @param candidate  one of those above, or a callable that returns the problem of a T
template <typename T, typename Candidate>
Check makeCheck(const Candidate& candidate) {
    if constexpr (HasCheck<T, Candidate>::value) {
        return candidate.template checkFor<T>();
    } else {
        static_assert(std::is_invocable_r_v<std::string, const Candidate&, const T&>,
                      "a check is callable with the option's value and answers a string");
        return {[candidate](const void* member, const ShownValue&) -> std::string {
                    return candidate(*static_cast<const T*>(member));
                },
                {}};
    }
}

} // namespace connector::configuration::detail
