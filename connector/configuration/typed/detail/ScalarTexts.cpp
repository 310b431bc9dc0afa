/// Text of either width from every scalar.
#include <connector/configuration/typed/detail/NumberText.hpp>
#include <connector/configuration/typed/detail/Scalars.hpp>
#include <connector/configuration/typed/detail/Unicode.hpp>

#include <array>
#include <charconv>

namespace connector::configuration::detail {

namespace {

template <typename T>
std::string charsOf(T number) {
    std::array<char, 32> buffer{}; // the longest double takes 24
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
    return std::string(buffer.data(), end);
}

/// ASCII text of a flag or number; nothing for other values.
class ScalarText : public boost::static_visitor<std::optional<std::string>> {
public:
    result_type operator()(bool flag) const { return flag ? "true" : "false"; }
    result_type operator()(int number) const { return charsOf(number); }
    result_type operator()(unsigned int number) const { return charsOf(number); }
    result_type operator()(double number) const { return charsOf(number); }
    template <typename T>
    result_type operator()(const T&) const {
        return std::nullopt;
    }
};

template <typename Text>
bool take(std::optional<Text>&& text, Text& place) {
    if (text)
        place = *std::move(text);
    return text.has_value();
}

} // namespace

std::string numberText(double number) {
    return charsOf(number);
}

std::string numberText(float number) {
    return charsOf(number);
}

bool toText(const OptionValue& value, std::string& place) {
    if (const auto* const text = boost::get<std::string>(&value)) {
        place = *text;
        return true;
    }
    if (const auto* const text = boost::get<std::u16string>(&value))
        return take(strictUtf8(*text), place);
    return take(boost::apply_visitor(ScalarText(), value), place);
}

bool toText(const OptionValue& value, std::u16string& place) {
    if (const auto* const text = boost::get<std::u16string>(&value)) {
        place = *text; // even where it is not well-formed: it stays what it is
        return true;
    }
    std::string utf8;
    return toText(value, utf8) && take(strictUtf16(utf8), place);
}

} // namespace connector::configuration::detail
