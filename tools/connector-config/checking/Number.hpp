/// Numbers of any of the types that a schema knows.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <Poco/Dynamic/Var.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace connector_config {

using Number = std::variant<std::int64_t, std::uint64_t, double>;

/// @return the order of the numbers themselves
bool isLess(const Number& left, const Number& right);

bool isNan(const Number& number);

std::optional<Number> integerOf(const connector::configuration::OptionValue& value);
std::optional<Number> numberOf(const connector::configuration::OptionValue& value);

/// @return the number of a schema; nothing if it is none
std::optional<Number> numberOf(const Poco::Dynamic::Var& json);

} // namespace connector_config
