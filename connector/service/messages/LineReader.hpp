/// Lines of limited length.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace connector::service {

/// Reads a file descriptor line by line. Of a line that is too long, what is too much is read and
/// forgotten, so that no line takes more memory than is allowed.
class LineReader {
public:
    LineReader(int newDescriptor, std::size_t newLongest)
        : descriptor(newDescriptor), longest(newLongest) {}

    /// @return the next line without its end, cut to one byte more than the longest; none at the end
    ///         of the input. The last line counts without an end, too, unless it is empty.
    std::optional<std::string> next();

private:
    bool fill();

    const int descriptor;
    const std::size_t longest;
    char buffer[65536];
    std::size_t begin = 0; // of what was read and not handed out
    std::size_t end = 0;
};

} // namespace connector::service
