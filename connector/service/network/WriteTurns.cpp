#include <connector/service/network/WriteTurns.hpp>

#include <utility>

namespace connector::service {

WriteTurns::WriteTurns(boost::asio::io_context& io) : wake(io, signal, [this] { takeTurn(); }) {
}

void WriteTurns::add(Write write) {
    waiting.push_back(std::move(write));
    if (waiting.size() == 1) // otherwise a turn follows anyway
        signal->raise();
}

/// What a write adds waits until all that wait now are done.
void WriteTurns::takeTurn() {
    for (std::size_t i = 0; i < writesInATurn && !waiting.empty(); ++i) {
        const Write write = std::move(waiting.front());
        waiting.pop_front();
        write();
    }
    if (!waiting.empty())
        signal->raise();
}

void WriteTurns::close() noexcept {
    wake.close();
    std::deque<Write>().swap(waiting);
}

} // namespace connector::service
