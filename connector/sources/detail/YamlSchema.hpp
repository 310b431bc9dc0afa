/// The core schema of YAML 1.2: what a scalar means.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <optional>
#include <string>

namespace connector::sources::detail {

enum class YamlType {
    Plain, ///< what it looks like
    Text,
    Null,
    Bool,
    Int,
    Float,
    Sequence,
    Mapping,
};

/// @param tag  as the parser gives it: "?" for none on a plain scalar, "!" for none on a quoted one
/// @return nothing for a tag that the core schema does not have
std::optional<YamlType> yamlTypeOf(const std::string& tag);

/// @return the value of a scalar; no value inside for null
/// @throws DocumentError when the text is none of the type, and for numbers that no option can hold
std::optional<configuration::OptionValue> yamlScalar(const std::string& text, YamlType type,
                                                     Place place);

} // namespace connector::sources::detail
