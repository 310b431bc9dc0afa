/// Reading an option as the type that the program works with.
///
/// Each function makes one lookup, so a value that does not convert and the source named in the
/// message belong together. They may be called from any thread, take the configuration's lock
/// during the lookup, and call back only into an OptionConverter, after it.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/typed/InvalidOption.hpp>
#include <connector/configuration/typed/OptionCast.hpp>

#include <optional>
#include <string>
#include <utility>

namespace connector::configuration {

namespace detail {

/// @return the option; nothing when there is no such option. Exceptions of a source propagate.
CONNECTOR_EXPORT std::optional<Option> findOption(Configuration& configuration,
                                                  const std::string& key);

/// @throws InvalidOption
template <typename T>
T convertOption(Option&& option) {
    std::optional<T> result = convertOrMove<T>(option.value);
    if (!result)
        throw InvalidOption(option, Conversion<T>::typeName());
    return *std::move(result);
}

} // namespace detail

/// @tparam T  see optionCast
/// @return the option's value
/// @throws std::runtime_error "No option with the specified key was found: " + key
/// @throws InvalidOption "Option KEY from source NAME is not convertible to TYPE: VALUE"
/// @throws what a source throws
template <typename T>
T getAs(Configuration& configuration, const std::string& key) {
    return detail::convertOption<T>(configuration.getOption(key).get());
}

/// @return the option's value; empty only when there is no such option
/// @throws InvalidOption as above
/// @throws what a source throws
template <typename T>
std::optional<T> findAs(Configuration& configuration, const std::string& key) {
    std::optional<Option> option = detail::findOption(configuration, key);
    if (!option)
        return std::nullopt;
    return detail::convertOption<T>(*std::move(option));
}

/// @return the option's value; the fallback only when there is no such option
/// @throws InvalidOption as above: a value that does not convert is an error, not a missing option
/// @throws what a source throws
template <typename T>
T getOr(Configuration& configuration, const std::string& key, T fallback) {
    std::optional<T> value = findAs<T>(configuration, key);
    return value ? *std::move(value) : std::move(fallback);
}

} // namespace connector::configuration
