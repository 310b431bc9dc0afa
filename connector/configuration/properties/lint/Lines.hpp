/// The lines of a file.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace connector::configuration::properties::detail {

/// Converts offsets to lines and columns, both from 1. A line ends with LF, CR LF or CR.
class Lines {
public:
    explicit Lines(std::string_view text);

    std::size_t lineOf(std::size_t offset) const;

    /// @return in bytes
    std::size_t columnOf(std::size_t offset) const;

private:
    std::vector<std::size_t> starts;
};

} // namespace connector::configuration::properties::detail
