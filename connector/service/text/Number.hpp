/// Conversion of text to numbers.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace connector::service {

/// @return the number, or nothing unless the whole text is a number in the range of T
template <typename T>
std::optional<T> readNumber(std::string_view text) {
    T number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace connector::service
