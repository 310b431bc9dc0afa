/// The lines that watch reads.
#pragma once

#include <exception>
#include <mutex>
#include <optional>
#include <string>

namespace connector_config {

/// Reads lines from standard input until the end of the input, or until a failure on another thread
/// ends the wait.
class PromptLines {
public:
    /// @throws std::system_error if the process has no descriptor left
    PromptLines();
    ~PromptLines();
    PromptLines(const PromptLines&) = delete;
    PromptLines& operator=(const PromptLines&) = delete;

    /// Waits for a line. Must be called from one thread only.
    /// @return the line without its line break; nothing at the end of the input. The last line
    ///         needs no line break unless it is empty.
    /// @throws the exception that was passed to fail
    std::optional<std::string> next();

    /// Makes next throw an exception, also if it waits already. The first exception counts. May be
    /// called from any thread.
    void fail(std::exception_ptr exception);

private:
    bool readMore();
    void waitForInput() const;
    void rethrowFailure() const;

    const int failureEvent;   // becomes readable when there is a failure
    mutable std::mutex mutex; // guards `failure`
    std::exception_ptr failure;

    std::string unread; // of standard input
    bool isAtEnd = false;
};

} // namespace connector_config
