/// The names of the types that a value can have.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <optional>
#include <string_view>

namespace connector_config {

using connector::configuration::OptionValue;

/// In the order of the alternatives of OptionValue.
enum class ValueType {
    Bool,
    Int,
    Uint,
    Double,
    Ustring,
    String,
    BoolArray,
    IntArray,
    UintArray,
    DoubleArray,
    StringArray,
    UstringArray,
};

/// @return the name that the user reads and writes, the same as in the JSON form of values
const char* nameOf(ValueType type);

/// @return the type with exactly that name, if there is one
std::optional<ValueType> typeNamed(std::string_view name);

ValueType typeOf(const OptionValue& value);

} // namespace connector_config
