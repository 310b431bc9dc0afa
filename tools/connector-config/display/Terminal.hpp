/// What standard output leads to.
#pragma once

#include <cstddef>
#include <optional>

namespace connector_config {

struct Terminal {
    bool colour = false;              ///< whether colours are wanted
    std::optional<std::size_t> width; ///< in columns; none if it is no terminal or does not tell
};

/// Colours are wanted on a terminal, unless the environment variable NO_COLOR is set to a text, or
/// the terminal is a dumb one.
Terminal terminalOfOutput();

} // namespace connector_config
