/// Tables of conversions. Every row is tried as written, from UTF-16 text, as the one element of a
/// list and as the one item of a text.
#pragma once

#include "support/Expect.hpp"

#include <connector/configuration/typed/OptionCast.hpp>

#include <fl/i18n/codecvt.hpp>

#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace test {

using connector::configuration::BadOptionCast;
using connector::configuration::optionCast;
using connector::configuration::OptionValue;

template <typename T>
struct CastRow {
    int line;
    OptionValue value;
    std::optional<T> expected; ///< nothing: it does not convert
};

/// A table that only refuses.
struct RefusedRow {
    int line;
    OptionValue value;
};

/// @return the value as the one element of a list
class InsideList : public boost::static_visitor<OptionValue> {
public:
    template <typename T>
    OptionValue operator()(const std::vector<T>& list) const {
        return list; // there are no lists of lists
    }
    template <typename T>
    OptionValue operator()(const T& scalar) const {
        return std::vector<T>{scalar};
    }
};

/// @return a text that lists one item
inline std::string listOf(const std::string& item) {
    std::string text = item.empty() ? "\\e" : "";
    for (const char character : item) {
        if (std::string(",\\ \t").find(character) != std::string::npos)
            text += '\\';
        text += character;
    }
    return text;
}

inline std::optional<std::u16string> utf16(const std::string& text) {
    try {
        return fl::i18n::to_ustring(text, fl::i18n::codecvt_string_to_ustring("UTF-8", true));
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

template <typename T>
void expectCast(const OptionValue& value, const std::optional<T>& expected,
                const std::string& typeName) {
    SCOPED_TRACE(BadOptionCast(typeName, value).what());
    if (expected)
        EXPECT_EQ(*expected, optionCast<T>(value));
    else
        expectThrows<BadOptionCast>(BadOptionCast(typeName, value).what(),
                                    [&] { static_cast<void>(optionCast<T>(value)); });
}

template <typename T>
void expectCastInside(const OptionValue& list, const std::optional<T>& expected,
                      const std::string& typeName) {
    std::optional<std::vector<T>> expectedList;
    if (expected)
        expectedList = std::vector<T>{*expected};
    expectCast<std::vector<T>>(list, expectedList, typeName);
}

/// Tries one row in every way.
template <typename T>
void expectRow(const CastRow<T>& row, const std::string& typeName, const std::string& listName) {
    SCOPED_TRACE("row of line " + std::to_string(row.line));
    expectCast<T>(row.value, row.expected, typeName);
    if (row.value.which() < 6)
        expectCastInside<T>(boost::apply_visitor(InsideList(), row.value), row.expected, listName);
    const auto* const text = boost::get<std::string>(&row.value);
    if (text == nullptr)
        return;
    expectCastInside<T>(listOf(*text), row.expected, listName);
    if (const std::optional<std::u16string> wide = utf16(*text)) {
        expectCast<T>(*wide, row.expected, typeName);
        expectCastInside<T>(std::vector<std::u16string>{*wide}, row.expected, listName);
        expectCastInside<T>(*utf16(listOf(*text)), row.expected, listName);
    }
}

template <typename T>
void expectTable(const std::vector<CastRow<T>>& table, const std::string& typeName,
                 const std::string& listName) {
    for (const CastRow<T>& row : table)
        expectRow(row, typeName, listName);
}

/// What is no list of one element is no element, either.
template <typename T>
void expectRefused(const std::vector<RefusedRow>& table, const std::string& typeName) {
    for (const RefusedRow& row : table) {
        SCOPED_TRACE("row of line " + std::to_string(row.line));
        expectCast<T>(row.value, std::nullopt, typeName);
    }
}

} // namespace test
