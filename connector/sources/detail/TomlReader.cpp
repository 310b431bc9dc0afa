#include <connector/sources/detail/TomlReader.hpp>

#include <connector/sources/detail/DocumentBuilder.hpp>
#include <connector/sources/detail/Numbers.hpp>
#include <connector/sources/detail/Text.hpp>
#include <connector/sources/detail/TomlLimits.hpp>
#include <connector/sources/detail/TomlPlaces.hpp>

#include <toml++/toml.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace connector::sources::detail {

namespace {

/// @return a date, a time or both in the notation of RFC 3339
/// @param text  begins with the date or time
std::string dateText(std::string_view text) {
    std::size_t length = std::min(text.find_first_not_of("0123456789-:.+TtZz"), text.size());
    constexpr std::size_t date = 10; // its length; a blank may separate it from the time
    const bool isSplit = length == date && text.substr(date, 1) == " " &&
                         text.substr(date + 1, 1).find_first_of("0123456789") == 0;
    if (isSplit)
        length = std::min(text.find_first_not_of("0123456789:.+-Zz", date + 1), text.size());
    std::string result(text.substr(0, length));
    if (isSplit)
        result[date] = 'T';
    std::replace(result.begin(), result.end(), 't', 'T');
    std::replace(result.begin(), result.end(), 'z', 'Z');
    return result;
}

/// Builds a document from the parser's tables.
class Conversion {
public:
    explicit Conversion(std::string_view text) : places(text) {}

    Document of(const toml::table& top) {
        table(top, {1, 1});
        return builder.take();
    }

    Place placeOf(const toml::source_position& position) {
        return places.of(position.line, position.column);
    }

private:
    using Entry = std::pair<const toml::key*, const toml::node*>;

    /// The parser sorts its tables by key; the document has the order of the file.
    static std::vector<Entry> entriesOf(const toml::table& table) {
        std::vector<Entry> entries;
        entries.reserve(table.size());
        for (const auto& [key, value] : table)
            entries.emplace_back(&key, &value);
        std::sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
            return left.first->source().begin < right.first->source().begin;
        });
        return entries;
    }

    void table(const toml::table& table, Place place) {
        builder.beginObject(place);
        for (const auto& [key, value] : entriesOf(table)) {
            builder.key(std::string(key->str()), placeOf(key->source().begin));
            node(*value);
        }
        builder.end();
    }

    void array(const toml::array& array, Place place) {
        builder.beginArray(place);
        for (const toml::node& element : array)
            node(element);
        builder.end();
    }

    void node(const toml::node& node) {
        const Place place = placeOf(node.source().begin);
        if (const toml::table* const child = node.as_table())
            table(*child, place);
        else if (const toml::array* const child = node.as_array())
            array(*child, place);
        else
            builder.scalar(scalar(node, place), place);
    }

    configuration::OptionValue scalar(const toml::node& node, Place place) const {
        if (const auto* const text = node.as_string())
            return text->get();
        if (const auto* const truth = node.as_boolean())
            return truth->get();
        if (const auto* const integer = node.as_integer())
            return number(integer->get(), place);
        if (const auto* const fraction = node.as_floating_point())
            return number(fraction->get(), place);
        return dateText(places.from(place));
    }

    static configuration::OptionValue number(std::int64_t integer, Place place) {
        const auto value = decimalInteger(std::to_string(integer));
        if (!value)
            throw DocumentError(place, "The integer is not exact as a double");
        return *value;
    }

    configuration::OptionValue number(double fraction, Place place) const {
        // The parser yields infinity for the word, and for a number with too many digits.
        if (std::isinf(fraction) && places.from(place).find_first_of("0123456789") <= 1)
            throw DocumentError(place, "The number is beyond the range of double");
        return fraction;
    }

    TomlPlaces places;
    DocumentBuilder builder;
};

/// @return the start of the key whose value or whose end is at a position
Place keyBefore(std::string_view text, Place place) {
    const std::size_t end = offsetOf(text, place);
    std::size_t key = end + 1 - place.column;
    bool isBefore = true; // the first character of the key
    for (std::size_t i = key; i < end; ++i) {
        const char c = text[i];
        if (c == ',' || c == '{' || c == '[' || c == '\n') {
            isBefore = true;
        } else if (isBefore && c != ' ' && c != '\t') {
            key = i;
            isBefore = false;
        }
        if (c == '"' || c == '\'')
            i = std::min(text.find(c, i + 1), end);
    }
    if (text.substr(key, 1) == "[") // a header
        key = text.find_first_not_of("[ \t", key);
    return placeOf(text, key);
}

/// @return the start of the word that ends at a position
Place wordBefore(std::string_view text, Place place) {
    const std::size_t last = offsetOf(text, place) - 1;
    const std::size_t before = text.find_last_of(" \t\r\n=,[{", last);
    return placeOf(text, before == std::string_view::npos ? 0 : before + 1);
}

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

/// Reports the parser's error; with our own text and position where docs/sources.md defines them.
[[noreturn]] void refuse(std::string_view text, std::string reason, Place place) {
    if (contains(reason, "cannot redefine") || contains(reason, "cannot insert"))
        throw DocumentError(keyBefore(text, place), "The key stands here a second time");
    if (contains(reason, "parsing floating-point") && contains(reason, "could not be interpreted"))
        throw DocumentError(wordBefore(text, place), "The number is beyond the range of double");
    if (contains(reason, "not representable in 64 bits"))
        throw DocumentError(wordBefore(text, place), "The integer has more than 64 bits");
    reason = reason.substr(0, reason.find(", saw '")); // arbitrary text, possibly with line breaks
    throw DocumentError(place, "Invalid TOML: " + reason);
}

} // namespace

Document readToml(std::string_view text) {
    checkTomlLimits(text);
    Conversion conversion(text);
    try {
        return conversion.of(toml::parse(text));
    } catch (const toml::parse_error& error) {
        refuse(text, std::string(error.description()), conversion.placeOf(error.source().begin));
    }
}

} // namespace connector::sources::detail
