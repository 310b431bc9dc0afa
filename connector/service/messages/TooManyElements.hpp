/// The failure of a text whose elements would take too much memory.
#pragma once

#include <cstddef>
#include <stdexcept>

namespace connector::service {

/// In bytes; what the values of one text may take in memory. The text itself is at most 1 MiB, but
/// an element of two bytes can take 900 bytes once it is built.
constexpr std::size_t maxElementMemory = 4 * 1024 * 1024;

/// "A request has too many elements: they would take more than 4 MiB of memory"
class TooManyElements : public std::invalid_argument {
public:
    TooManyElements()
        : invalid_argument(
              "A request has too many elements: they would take more than 4 MiB of memory") {}
};

} // namespace connector::service
