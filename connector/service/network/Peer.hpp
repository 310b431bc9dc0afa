/// The two ends of a connection.
#pragma once

#include <boost/asio/ip/address.hpp>

#include <cstdint>

namespace connector::service {

struct Peer {
    boost::asio::ip::address local;  ///< the server's end; unspecified for a Unix socket
    std::uint16_t localPort = 0;     ///< 0 for a Unix socket
    boost::asio::ip::address remote; ///< the client's end; unspecified for a Unix socket
    bool isUnix = false;
    bool isTls = false;
};

/// An IPv6 socket that also accepts IPv4 clients reports their addresses as IPv4-mapped ones.
/// @return the IPv4 address of a mapped one; every other address as it is
inline boost::asio::ip::address unmapped(const boost::asio::ip::address& address) {
    if (!address.is_v6() || !address.to_v6().is_v4_mapped())
        return address;
    return boost::asio::ip::make_address_v4(boost::asio::ip::v4_mapped, address.to_v6());
}

} // namespace connector::service
