/// Lines of limited length from a file descriptor.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace connector::service {

/// Reads a file descriptor line by line. The excess part of a line that is too long is read and
/// discarded, so that no line takes more memory than allowed. Not thread-safe.
class LineReader {
public:
    /// @param newMaxLength  of a line in bytes, without its line break
    /// @param newWait       called before each attempt to read; returns when there may be input, or
    ///                      throws; without one, next waits for input only
    LineReader(int newDescriptor, std::size_t newMaxLength, std::function<void()> newWait = {})
        : descriptor(newDescriptor), maxLength(newMaxLength), wait(std::move(newWait)) {}

    /// Waits until a line has arrived, whether or not the descriptor blocks.
    /// @return the next line without its line break; nothing at the end of the input. A line that
    ///         is too long is truncated to one byte more than the maximum. The last line needs no
    ///         line break unless it is empty.
    /// @throws std::system_error "Input could not be read"
    /// @throws what the function that waits throws
    std::optional<std::string> next();

private:
    bool fillBuffer();

    const int descriptor;
    const std::size_t maxLength;
    const std::function<void()> wait;
    char buffer[65536];
    std::size_t begin = 0; // of the bytes that were read but not returned yet
    std::size_t end = 0;
};

} // namespace connector::service
