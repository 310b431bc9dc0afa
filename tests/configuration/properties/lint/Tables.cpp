#include "configuration/properties/lint/Tables.hpp"

#include "configuration/properties/parsing/Observation.hpp"
#include "support/TemporaryDirectory.hpp"

#include <fl/i18n/codecvt.hpp>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace test {

namespace {

std::uint32_t readNumber(std::istream& in) {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i)
        number = number << 8 | static_cast<unsigned char>(in.get());
    if (!in)
        throw std::runtime_error("The tables of java.util.Properties are incomplete");
    return number;
}

void writeNumber(std::ostream& out, std::size_t number) {
    for (int shift = 24; shift >= 0; shift -= 8)
        out.put(static_cast<char>(number >> shift));
}

std::u16string readText(std::istream& in) {
    std::u16string text(readNumber(in), u'\0');
    for (char16_t& unit : text) {
        const int high = in.get();
        unit = static_cast<char16_t>(high << 8 | in.get());
    }
    return text;
}

std::optional<UnicodeTable> readTable(std::istream& in) {
    const auto count = static_cast<std::int32_t>(readNumber(in));
    if (count < 0)
        return std::nullopt;
    UnicodeTable table;
    for (std::int32_t i = 0; i < count; ++i) {
        std::u16string key = readText(in);
        table[key] = readText(in);
    }
    return table;
}

void writeFiles(const std::string& path, const std::vector<std::string>& files) {
    std::ofstream out(path, std::ios::binary);
    writeNumber(out, files.size());
    for (const std::string& file : files) {
        writeNumber(out, file.size());
        out << file;
    }
}

} // namespace

Table readByLibrary(const std::string& text) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream(text);
    source->parseStream(stream);
    return optionsOf(*source);
}

std::optional<UnicodeTable> unicodeTable(const Table& table) {
    const fl::i18n::codecvt_string_to_ustring fromUtf8("UTF-8", true);
    UnicodeTable result;
    try {
        for (const auto& [key, value] : table)
            result[fl::i18n::to_ustring(key, fromUtf8)] = fl::i18n::to_ustring(value, fromUtf8);
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
    return result;
}

std::u16string toUtf16(const std::string& text) {
    std::u16string result;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i++]);
        const int more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        char32_t code = more == 0 ? lead : lead & (0x3F >> more);
        for (int k = 0; k < more; ++k)
            code = code << 6 | (static_cast<unsigned char>(text[i++]) & 0x3F);
        if (code > 0xFFFF) {
            result += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            code = 0xDC00 + ((code - 0x10000) & 0x3FF);
        }
        result += static_cast<char16_t>(code);
    }
    return result;
}

bool hasJava() {
    return std::string(JAVA_PROGRAM) != "";
}

std::vector<std::optional<UnicodeTable>> readByJava(const std::vector<std::string>& files) {
    const TemporaryDirectory directory;
    const std::string input = directory.path / "files";
    const std::string output = directory.path / "tables";
    writeFiles(input, files);
    const std::string command =
        "'" JAVA_PROGRAM "' '" JAVA_SOURCE "' '" + input + "' '" + output + "'";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("Failed: " + command);
    std::ifstream in(output, std::ios::binary);
    std::vector<std::optional<UnicodeTable>> tables;
    for (std::size_t i = 0; i < files.size(); ++i)
        tables.push_back(readTable(in));
    return tables;
}

} // namespace test
