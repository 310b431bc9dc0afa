/// The core schema of YAML 1.2: the types and values of scalars.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <optional>
#include <string>

namespace connector::sources::detail {

enum class YamlType {
    Plain, ///< determined by the text
    Text,
    Null,
    Bool,
    Int,
    Float,
    Sequence,
    Mapping,
};

/// @param tag  as the parser reports it: "?" for an untagged plain scalar, "!" for an untagged
///        quoted one
/// @return nothing for a tag that is not in the core schema
std::optional<YamlType> yamlTypeOf(const std::string& tag);

/// @return the value of a scalar; no value inside for null
/// @throws DocumentError if the text is not of the type, or is a number that no option can hold
std::optional<configuration::OptionValue> yamlScalar(const std::string& text, YamlType type,
                                                     Place place);

} // namespace connector::sources::detail
