/// Standard output and standard error.
#pragma once

#include <string>
#include <system_error>

namespace connector_config {

/// Standard output could not be written.
class OutputError : public std::system_error {
public:
    explicit OutputError(int error);

    /// @return whether the reader has closed the pipe; it does not need a message about that
    bool isBrokenPipe() const;
};

/// Writes the whole text to standard output, unbuffered. May be called from several threads: no
/// other text is written in between. Waits for the reader, also if standard output is a pipe that
/// does not block.
/// @throws OutputError
void writeOutput(const std::string& text);

/// Writes "connector-config: " and the escaped message to standard error, as one line. May be
/// called from several threads.
void printError(const std::string& message);

/// Writes the escaped message to standard error, as one line. May be called from several threads.
void printNotice(const std::string& message);

} // namespace connector_config
