/// Numbers in text.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace connector::service {

/// @return the number, if the whole text is one and T can hold it
template <typename T>
std::optional<T> readNumber(std::string_view text) {
    T number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace connector::service
