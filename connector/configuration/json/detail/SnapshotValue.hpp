/// Option values in snapshots.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <Poco/Dynamic/Var.h>

#include <limits>
#include <optional>

namespace connector::configuration::detail {

/// @return the number; nothing if it is no integer, or out of the range of the type
template <typename Integer>
std::optional<Integer> integerOf(const Poco::Dynamic::Var& json) {
    if (json.type() != typeid(Poco::Int64)) // as the parser stores all that are in range
        return std::nullopt;
    const auto number = json.extract<Poco::Int64>();
    if (number < std::numeric_limits<Integer>::min() ||
        number > std::numeric_limits<Integer>::max())
        return std::nullopt;
    return static_cast<Integer>(number);
}

/// Unlike toOptionValue, tolerates nothing: a snapshot must not change a value in silence.
/// @param json  {"type", "value"}
/// @throws BadMember  see BadMember.hpp
OptionValue readValue(const Poco::Dynamic::Var& json);

} // namespace connector::configuration::detail
