/// The terminal that standard output writes to, if any.
#pragma once

#include <cstddef>
#include <optional>

namespace connector_config {

struct Terminal {
    bool colour = false;              ///< whether to use colours
    std::optional<std::size_t> width; ///< in columns; none if unknown or not a terminal
};

/// Colours are used on a terminal unless the environment variable NO_COLOR is set and not empty, or
/// TERM is "dumb".
Terminal terminalOfOutput();

} // namespace connector_config
