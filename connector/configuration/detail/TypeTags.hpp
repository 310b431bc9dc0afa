/// The names of the types of option values.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <array>
#include <cstddef>
#include <string_view>

namespace connector::configuration::detail {

/// The tags of the JSON form, in the order of the alternatives of OptionValue. Other programs send
/// them, so not one character changes.
inline constexpr std::array<std::string_view, 12> typeTags = {
    "bool",      "int",      "uint",      "double",      "ustring",     "string",
    "boolArray", "intArray", "uintArray", "doubleArray", "stringArray", "ustringArray",
};
static_assert(typeTags.size() == boost::mpl::size<OptionValue::types>::value);

inline std::string_view typeTagOf(const OptionValue& value) {
    return typeTags[static_cast<std::size_t>(value.which())];
}

} // namespace connector::configuration::detail
