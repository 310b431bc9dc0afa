/// The library's diagnostic lines on standard error.
#pragma once

#include <connector/service/text/Secrets.hpp>

#include <memory>
#include <string>

namespace connector_config {

/// Switches the lines on while it lives.
class Trace {
public:
    /// @param secrets  whose values are masked
    explicit Trace(const Secrets& secrets);
    ~Trace();
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

private:
    class Impl;
    const std::unique_ptr<Impl> impl;
};

/// Says which group the property file has that this thread adds while the object lives: the lines of
/// the file tell its keys without it, and whether a key is secret is a question of the whole key.
class TracedGroup {
public:
    explicit TracedGroup(const std::string& group);
    ~TracedGroup();
    TracedGroup(const TracedGroup&) = delete;
    TracedGroup& operator=(const TracedGroup&) = delete;

private:
    const std::string before;
};

} // namespace connector_config
