/// An option whose value is not what the program needs.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/Option.hpp>

#include <memory>
#include <stdexcept>
#include <string>

namespace connector::configuration {

/// "Option KEY from source NAME is not convertible to TYPE: VALUE". VALUE is the payload as the
/// JSON form writes it; for keys that contain "password", "secret" or "token", in any case, it is
/// "******".
class CONNECTOR_EXPORT InvalidOption : public std::runtime_error {
public:
    InvalidOption(const Option& option, const std::string& expected);
    InvalidOption(const InvalidOption&) noexcept = default;
    InvalidOption& operator=(const InvalidOption&) noexcept = default;
    ~InvalidOption() override;

    const std::string& key() const { return details->key; }
    const std::string& source() const { return details->source; }     ///< that supplies the value
    const std::string& expected() const { return details->expected; } ///< the name of the type

private:
    struct Details {
        std::string key;
        std::string source;
        std::string expected;
    };
    std::shared_ptr<const Details> details; // shared, so that no copy of an exception throws
};

} // namespace connector::configuration
