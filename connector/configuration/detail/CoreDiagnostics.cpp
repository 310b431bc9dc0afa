#include <connector/configuration/detail/CoreDiagnostics.hpp>

namespace connector::configuration::detail {

foundation::log::basic_diagnostic_logger coreLogger("connector::configuration");

} // namespace connector::configuration::detail
