/// A value that does not convert.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/OptionValue.hpp>

#include <stdexcept>
#include <string>

namespace connector::configuration {

/// "Option value is not convertible to TYPE: VALUE", where VALUE is the payload as the JSON form
/// writes it, with U+FFFD for bytes that are not UTF-8. It has no key, so it does not hide secrets;
/// InvalidOption does.
class CONNECTOR_EXPORT BadOptionCast : public std::runtime_error {
public:
    BadOptionCast(const std::string& typeName, const OptionValue& value);
    BadOptionCast(const BadOptionCast&) noexcept = default;
    BadOptionCast& operator=(const BadOptionCast&) noexcept = default;
    ~BadOptionCast() override;
};

} // namespace connector::configuration
