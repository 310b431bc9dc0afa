/// Checks for the options of a schema.
#pragma once

#include <connector/configuration/typed/detail/Check.hpp>

#include <initializer_list>
#include <string>
#include <utility>

namespace connector::configuration {

/// Both bounds are allowed. For numbers, durations and byte sizes.
/// The problem: "must be between LOW and HIGH: VALUE"
template <typename Low, typename High>
detail::Range<Low, High> inRange(Low low, High high) {
    return {std::move(low), std::move(high)};
}

/// The problem: "must be one of A, B, C: VALUE"
template <typename Value>
detail::Choice<Value> oneOf(std::initializer_list<Value> values) {
    return {values};
}
inline detail::Choice<std::string> oneOf(std::initializer_list<const char*> values) {
    return {{values.begin(), values.end()}};
}

/// For text, paths and lists. The problem: "must not be empty"
inline detail::NotEmpty notEmpty() {
    return {};
}

} // namespace connector::configuration
