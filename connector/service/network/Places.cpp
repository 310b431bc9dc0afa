#include <connector/service/network/Places.hpp>

#include <algorithm>

namespace connector::service {

namespace {

bool isOfThisMachine(const Peer& peer) {
    return peer.isUnix || unmapped(peer.remote).is_loopback() || peer.remote == peer.local;
}

} // namespace

bool Places::take(const Peer& peer) {
    if (taken >= total)
        return false;
    if (!isOfThisMachine(peer)) {
        std::size_t& ofThisOne = takenByOthers[peer.remote];
        if (ofThisOne >= std::max<std::size_t>(total / 2, 1))
            return false;
        ++ofThisOne;
    }
    ++taken;
    return true;
}

void Places::giveBack(const Peer& peer) noexcept {
    --taken;
    const auto other = takenByOthers.find(peer.remote);
    if (other != takenByOthers.end() && --other->second == 0)
        takenByOthers.erase(other);
}

} // namespace connector::service
