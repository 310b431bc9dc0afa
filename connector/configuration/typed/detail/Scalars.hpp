/// The conversions of one value, without templates. Each returns false, and leaves `place` alone,
/// when the value does not convert.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace connector::configuration::detail {

CONNECTOR_EXPORT bool toBool(const OptionValue& value, bool& place);

/// @param least, greatest  of the requested integer type
CONNECTOR_EXPORT bool toSigned(const OptionValue& value, std::int64_t least, std::int64_t greatest,
                               std::int64_t& place);
CONNECTOR_EXPORT bool toUnsigned(const OptionValue& value, std::uint64_t greatest,
                                 std::uint64_t& place);

CONNECTOR_EXPORT bool toDouble(const OptionValue& value, double& place);
CONNECTOR_EXPORT bool toFloat(const OptionValue& value, float& place);

CONNECTOR_EXPORT bool toText(const OptionValue& value, std::string& place);
CONNECTOR_EXPORT bool toText(const OptionValue& value, std::u16string& place);

/// UTF-8, not empty.
CONNECTOR_EXPORT bool toPathText(const OptionValue& value, std::string& place);

/// Durations: see UnitText.hpp for the period.
CONNECTOR_EXPORT bool toTicks(const OptionValue& value, std::uintmax_t numerator,
                              std::uintmax_t denominator, std::int64_t least,
                              std::uint64_t greatest, std::uint64_t& twosComplement);
CONNECTOR_EXPORT bool toRoundedTicks(const OptionValue& value, std::uintmax_t numerator,
                                     std::uintmax_t denominator, int precision, long double& place);

CONNECTOR_EXPORT bool toBytes(const OptionValue& value, std::uint64_t& place);

/// @return the elements of a list, the items of a text; nothing for other values
CONNECTOR_EXPORT std::optional<std::vector<OptionValue>> toItems(const OptionValue& value);

/// @return the text of a value that is one, in UTF-8 unless it is 8-bit text of another kind
CONNECTOR_EXPORT std::optional<std::string> textOf(const OptionValue& value);

/// @return whether the texts are the same but for the case of ASCII letters
CONNECTOR_EXPORT bool equalIgnoringCase(std::string_view left, std::string_view right);

} // namespace connector::configuration::detail
