/// The types of option values, and the names by which the user refers to them.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <optional>
#include <string>

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

/// @return the type tag in the JSON form of such a value
const std::string& typeName(ValueType type);

/// @return the type with exactly this name, or nothing if there is none
std::optional<ValueType> typeFromName(const std::string& name);

ValueType typeOf(const OptionValue& value);

} // namespace connector_config
