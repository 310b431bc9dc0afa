/// What the user wrote makes no sense, as opposed to what the library refuses.
#pragma once

#include <stdexcept>

namespace connector_config {

class WrongArguments : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace connector_config
