/// A number of bytes, written as "64KiB" in a file.
#pragma once

#include <cstdint>

namespace connector::configuration {

struct ByteSize {
    std::uint64_t bytes = 0;

    friend bool operator==(ByteSize left, ByteSize right) { return left.bytes == right.bytes; }
    friend bool operator!=(ByteSize left, ByteSize right) { return left.bytes != right.bytes; }
    friend bool operator<(ByteSize left, ByteSize right) { return left.bytes < right.bytes; }
    friend bool operator>(ByteSize left, ByteSize right) { return left.bytes > right.bytes; }
    friend bool operator<=(ByteSize left, ByteSize right) { return left.bytes <= right.bytes; }
    friend bool operator>=(ByteSize left, ByteSize right) { return left.bytes >= right.bytes; }
};

} // namespace connector::configuration
