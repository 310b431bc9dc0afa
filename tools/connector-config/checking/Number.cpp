#include "checking/Number.hpp"

#include <connector/configuration/typed/OptionCast.hpp>

#include <cmath>

namespace connector_config {

using connector::configuration::BadOptionCast;
using connector::configuration::optionCast;
using connector::configuration::OptionValue;

namespace {

template <typename T>
std::optional<Number> cast(const OptionValue& value) {
    try {
        return Number(optionCast<T>(value));
    } catch (const BadOptionCast&) {
        return std::nullopt;
    }
}

struct Less {
    bool operator()(std::int64_t left, std::uint64_t right) const {
        return left < 0 || static_cast<std::uint64_t>(left) < right;
    }
    bool operator()(std::uint64_t left, std::int64_t right) const {
        return right > 0 && left < static_cast<std::uint64_t>(right);
    }
    template <typename T>
    bool operator()(T left, T right) const {
        return left < right;
    }
    template <typename Left, typename Right>
    bool operator()(Left left, Right right) const {
        return static_cast<long double>(left) < static_cast<long double>(right);
    }
};

} // namespace

bool isLess(const Number& left, const Number& right) {
    return std::visit(Less(), left, right);
}

bool isNan(const Number& number) {
    const auto* const floating = std::get_if<double>(&number);
    return floating != nullptr && std::isnan(*floating);
}

std::optional<Number> integerOf(const OptionValue& value) {
    const std::optional<Number> number = cast<std::int64_t>(value);
    return number ? number : cast<std::uint64_t>(value);
}

std::optional<Number> numberOf(const OptionValue& value) {
    const std::optional<Number> number = integerOf(value);
    return number ? number : cast<double>(value);
}

std::optional<Number> numberOf(const Poco::Dynamic::Var& json) {
    if (!json.isNumeric() || json.isBoolean())
        return std::nullopt;
    if (!json.isInteger())
        return Number(json.convert<double>());
    return json.isSigned() ? Number(std::int64_t{json.convert<Poco::Int64>()})
                           : Number(std::uint64_t{json.convert<Poco::UInt64>()});
}

} // namespace connector_config
