/// The diagnostic logger of the configuration itself.
#pragma once

#include <foundation/log/basic_diagnostic_logger.hpp>

namespace connector::configuration::detail {

/// The logger "connector::configuration"; made when the library is loaded.
extern foundation::log::basic_diagnostic_logger coreLogger;

/// The severity of all of its lines.
inline constexpr unsigned coreSeverity = 8;

/// Writes one line of the core, made of the pieces one after the other.
template <typename... Pieces>
void logCore(const Pieces&... pieces) {
    coreLogger.log(coreSeverity, pieces...);
}

} // namespace connector::configuration::detail
