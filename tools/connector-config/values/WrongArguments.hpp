/// The failure that ends the program with exit status 2.
#pragma once

#include <stdexcept>

namespace connector_config {

/// What the user wrote is invalid, whatever the configuration contains.
class WrongArguments : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace connector_config
