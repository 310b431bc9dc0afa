/// How many clients may be connected.
#pragma once

#include <connector/service/network/Peer.hpp>

#include <boost/asio/ip/address.hpp>

#include <cstddef>
#include <map>

namespace connector::service {

/// The places of a server. One other machine gets at most half of them, so that it cannot keep out
/// everyone else. This machine may use all.
class Places {
public:
    explicit Places(std::size_t newTotal) : total(newTotal) {}

    /// @return whether there was a place, which is now taken
    bool take(const Peer& peer);

    /// Returns a place that was taken for this client.
    void giveBack(const Peer& peer) noexcept;

private:
    const std::size_t total;
    std::size_t taken = 0;
    std::map<boost::asio::ip::address, std::size_t> takenByOthers;
};

} // namespace connector::service
