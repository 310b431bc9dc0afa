/// Option values as text that shows their type, too: true, 1, 1u, 1.5, "text", u"text", [1, 2].
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <boost/variant/apply_visitor.hpp>

#include <cmath>
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

namespace test {

struct Show {
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(int value) const { return std::to_string(value); }
    std::string operator()(unsigned value) const { return std::to_string(value) + "u"; }
    std::string operator()(double value) const {
        char text[40];
        if (std::fabs(value) < 1e15 && std::floor(value) == value) {
            std::snprintf(text, sizeof text, "%.1f", value);
            return text;
        }
        std::snprintf(text, sizeof text, "%.17g", value);
        for (int precision = 1; precision < 17; ++precision) { // the shortest exact one
            char shorter[40];
            std::snprintf(shorter, sizeof shorter, "%.*g", precision, value);
            if (std::stod(shorter) == value)
                return withPoint(shorter);
        }
        return withPoint(text);
    }
    std::string operator()(const std::string& value) const { return '"' + value + '"'; }
    std::string operator()(const std::u16string& value) const {
        std::string text = "u\"";
        for (const char16_t unit : value)
            text += unit < 0x80 ? static_cast<char>(unit) : '?';
        return text + '"';
    }
    template <typename T>
    std::string operator()(const std::vector<T>& values) const {
        std::string text;
        for (const T& value : values)
            text += (text.empty() ? "" : ", ") + (*this)(value);
        return '[' + text + ']';
    }

private:
    static std::string withPoint(std::string text) {
        return text.find_first_of(".en") == std::string::npos ? text + ".0" : text;
    }
};

inline std::string shown(const connector::configuration::OptionValue& value) {
    return boost::apply_visitor(Show(), value);
}

} // namespace test

namespace boost {

/// GoogleTest prints option values with this.
inline void PrintTo(const connector::configuration::OptionValue& value, std::ostream* out) {
    *out << test::shown(value);
}

} // namespace boost
