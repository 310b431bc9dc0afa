#include <connector/configuration/typed/detail/TextNumbers.hpp>

#include <charconv>
#include <cmath>
#include <system_error>

namespace connector::configuration::detail {

namespace {

/// @param format  what std::from_chars takes after the range
template <typename T, typename Format>
bool readAll(std::string_view text, T& place, Format format) {
    T number{};
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, format);
    if (error != std::errc{} || rest != end)
        return false;
    place = number;
    return true;
}

template <typename T>
bool readInteger(std::string_view text, T& place) {
    if (text.size() < 2 || text[0] != '0' || text[1] != 'x')
        return readAll(text, place, 10);
    text.remove_prefix(2);
    return !text.empty() && text.front() != '-' && readAll(text, place, 16);
}

template <typename T>
bool readFinite(std::string_view text, T& place) {
    T number{};
    if (!readAll(text, number, std::chars_format::general) || !std::isfinite(number))
        return false;
    place = number;
    return true;
}

} // namespace

bool readSigned(std::string_view text, std::int64_t& place) {
    return readInteger(text, place);
}

bool readUnsigned(std::string_view text, std::uint64_t& place) {
    return readInteger(text, place); // std::from_chars takes no minus sign for unsigned types
}

bool readFloating(std::string_view text, double& place) {
    return readFinite(text, place);
}

bool readFloating(std::string_view text, float& place) {
    return readFinite(text, place);
}

} // namespace connector::configuration::detail
