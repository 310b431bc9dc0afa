/// A checksum against damage, not against forgery.
#pragma once

#include <Poco/Checksum.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace connector::etcd::detail {

/// @return the CRC-32 of the bytes
inline std::uint32_t checksumOf(std::string_view bytes) {
    Poco::Checksum sum(Poco::Checksum::TYPE_CRC32);
    for (; bytes.size() > 0; bytes.remove_prefix(std::min<std::size_t>(bytes.size(), 1u << 30)))
        sum.update(bytes.data(),
                   static_cast<unsigned int>(std::min<std::size_t>(bytes.size(), 1u << 30)));
    return static_cast<std::uint32_t>(sum.checksum());
}

} // namespace connector::etcd::detail
