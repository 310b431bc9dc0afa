/// The lines that watch reads.
#pragma once

#include <connector/service/messages/LineReader.hpp>

#include <cstddef>
#include <exception>
#include <mutex>
#include <optional>
#include <string>

namespace connector_config {

/// Reads lines from standard input until the end of the input, or until a failure on another thread
/// ends the wait.
class PromptLines {
public:
    static constexpr std::size_t maxLength = 1024 * 1024; ///< of a line in bytes

    /// @throws std::system_error "Input could not be read": standard input is closed, or the
    ///         process has no descriptor left
    PromptLines();
    ~PromptLines();
    PromptLines(const PromptLines&) = delete;
    PromptLines& operator=(const PromptLines&) = delete;

    /// Waits for a line. Must be called from one thread only.
    /// @return the line without its line break; nothing at the end of the input. A line that is
    ///         too long is truncated to one byte more than the maximum. The last line needs no line
    ///         break unless it is empty.
    /// @throws std::system_error "Input could not be read"
    /// @throws the exception that was passed to fail
    std::optional<std::string> next();

    /// Makes next throw an exception, also if it waits already. The first exception counts. May be
    /// called from any thread.
    void fail(std::exception_ptr exception);

private:
    void waitForInput() const;
    void rethrowFailure() const;

    const int failureEvent;   // becomes readable when there is a failure
    mutable std::mutex mutex; // guards `failure`
    std::exception_ptr failure;

    connector::service::LineReader lines; // of standard input
};

} // namespace connector_config
