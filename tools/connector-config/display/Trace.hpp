/// Writes the library's diagnostic lines to standard error.
#pragma once

#include <connector/service/text/Secrets.hpp>

#include <memory>

namespace connector_config {

using connector::service::Secrets;

/// Enables the lines during its lifetime.
class Trace {
public:
    /// @param secrets  keys whose values are masked
    explicit Trace(const Secrets& secrets);
    ~Trace();
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

private:
    class Impl;
    const std::unique_ptr<Impl> impl;
};

} // namespace connector_config
