/// Converts the value of an option to the type that a program works with.
///
/// The conversions are strict: the whole value converts, exactly and in range, or it does not. They
/// depend on no locale. docs/typed-options.md has the table of what converts to what.
#pragma once

#include <connector/configuration/OptionValue.hpp>
#include <connector/configuration/typed/BadOptionCast.hpp>
#include <connector/configuration/typed/ByteSize.hpp>
#include <connector/configuration/typed/OptionConverter.hpp>
#include <connector/configuration/typed/OptionNames.hpp>
#include <connector/configuration/typed/detail/Conversion.hpp>

#include <optional>
#include <utility>

namespace connector::configuration {

/// May be called from any thread; calls back only into an OptionConverter of the application's.
/// @tparam T  bool; an integer of 8 to 64 bits; double, float; std::string, std::u16string; a
///            std::chrono::duration; ByteSize; std::filesystem::path; a std::vector of these; an
///            enumeration with OptionNames; a type with an OptionConverter
/// @return the value as a T
/// @throws BadOptionCast "Option value is not convertible to TYPE: VALUE"
template <typename T>
T optionCast(const OptionValue& value) {
    std::optional<T> result = detail::Conversion<T>::from(value);
    if (!result)
        throw BadOptionCast(detail::Conversion<T>::typeName(), value);
    return *std::move(result);
}

} // namespace connector::configuration
