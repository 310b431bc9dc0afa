/// How options are converted to the application's own types.
#pragma once

namespace connector::configuration {

/// Specialised by the application, with two static functions:
///
///     static T convert(const OptionValue& value); // any std::exception: it does not convert
///     static std::string typeName();              // for messages
///
/// A specialisation takes precedence over every conversion of the library. It must be visible
/// wherever the type is converted.
template <typename T>
struct OptionConverter;

} // namespace connector::configuration
