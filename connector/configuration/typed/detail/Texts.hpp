/// The texts of everything that typed options throw or report. They are part of the interface: not
/// one character may change. Where a text begins or ends in a blank, the variable part follows
/// directly.
#pragma once

#include <string>

namespace connector::configuration::detail::texts {

inline constexpr const char* optionValue = "Option value ";
inline constexpr const char* option = "Option ";
inline constexpr const char* fromSource = " from source ";
inline constexpr const char* hidden = "******";

inline constexpr const char* required = "is required";
inline constexpr const char* empty = "must not be empty";
inline constexpr const char* unknown = "is unknown";
inline constexpr const char* suggestion = ", did you mean ";

inline constexpr const char* nullConfiguration = "A null configuration cannot be followed.";
inline constexpr const char* emptyHandler = "An empty handler cannot be called.";
inline constexpr const char* nameless = "A declared option needs a name.";
inline constexpr const char* declaredTwice = "Option declared twice: ";
inline constexpr const char* groupWithPrefix = "The schema of a group must not have a prefix: ";

inline std::string notConvertible(const std::string& typeName, const std::string& value) {
    return "is not convertible to " + typeName + ": " + value;
}

} // namespace connector::configuration::detail::texts
