/// Lines of limited length from a file descriptor.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace connector::service {

/// Reads a file descriptor line by line. The excess part of a line that is too long is read and
/// discarded, so that no line takes more memory than allowed. Not thread-safe.
class LineReader {
public:
    /// @param newMaxLength  of a line in bytes, without its line break
    LineReader(int newDescriptor, std::size_t newMaxLength)
        : descriptor(newDescriptor), maxLength(newMaxLength) {}

    /// Blocks until a line has arrived.
    /// @return the next line without its line break; nothing at the end of the input. A line that
    ///         is too long is truncated to one byte more than the maximum. The last line needs no
    ///         line break unless it is empty.
    /// @throws std::system_error "Input could not be read"
    std::optional<std::string> next();

private:
    bool fillBuffer();

    const int descriptor;
    const std::size_t maxLength;
    char buffer[65536];
    std::size_t begin = 0; // of the bytes that were read but not returned yet
    std::size_t end = 0;
};

} // namespace connector::service
