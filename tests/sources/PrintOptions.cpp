/// Writes the options of files to standard output, one JSON object per line, for a comparison with
/// other readers: {"key": ["type", value]}, or {"error": "text"} in an array if there is an error.
/// Doubles are written as hexadecimal text.
///
/// Usage: print-options FILE...
#include <connector/sources/FileSource.hpp>

#include <boost/variant/apply_visitor.hpp>

#include <cstdio>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace {

using connector::configuration::OptionValue;
using connector::sources::FileError;
using connector::sources::FileSource;

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        char escaped[8];
        if (static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\') {
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
            result += escaped;
        } else {
            result += c;
        }
    }
    return result + '"';
}

struct Value {
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(int value) const { return std::to_string(value); }
    std::string operator()(unsigned value) const { return std::to_string(value); }
    std::string operator()(double value) const {
        char text[64];
        std::snprintf(text, sizeof text, "\"%a\"", value);
        return text;
    }
    std::string operator()(const std::string& value) const { return quoted(value); }
    std::string operator()(const std::u16string&) const { return "null"; }
    template <typename T>
    std::string operator()(const std::vector<T>& values) const {
        std::string text;
        for (const T& value : values)
            text += (text.empty() ? "" : ",") + (*this)(value);
        return '[' + text + ']';
    }
};

const char* typeOf(const OptionValue& value) {
    static const char* const names[] = {"bool",  "int",  "uint",  "double",  "u16",   "text",
                                        "bools", "ints", "uints", "doubles", "texts", "u16s"};
    return names[value.which()];
}

std::string optionsOf(const std::string& path) {
    try {
        const auto table = FileSource(path).table();
        std::string line;
        for (const auto& [key, value] :
             std::map<std::string, OptionValue>(table->begin(), table->end()))
            line += (line.empty() ? "" : ",") + quoted(key) + ":[\"" + typeOf(value) + "\"," +
                    boost::apply_visitor(Value(), value) + ']';
        return '{' + line + '}';
    } catch (const FileError& error) {
        return "[{\"error\":" + quoted(error.what()) + "}]";
    }
}

} // namespace

int main(int count, char** arguments) {
    for (int i = 1; i < count; ++i)
        std::cout << optionsOf(arguments[i]) << '\n';
}
