/// Lets connections take turns in writing.
#pragma once

#include <connector/service/network/Signal.hpp>
#include <connector/service/network/Wake.hpp>

#include <boost/asio/io_context.hpp>

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>

namespace connector::service {

/// The network thread does a few writes, then looks for other work, and so on: nobody waits until a
/// change is on its way to all who watch the option. Used by the network thread.
class WriteTurns {
public:
    using Write = std::function<void()>;

    /// How many writes are done before other work is looked for.
    static constexpr std::size_t writesInATurn = 8;

    /// @throws std::system_error  no descriptor is left
    explicit WriteTurns(boost::asio::io_context& io);

    /// @param write  called once, after all that were added before; must not throw
    void add(Write write);

    /// Must be called before the first write is done, and again when a handler of the thread has
    /// thrown.
    void start() { wake.start(); }

    /// Forgets the writes that wait.
    void close() noexcept;

private:
    void takeTurn();

    const std::shared_ptr<const Signal> signal = std::make_shared<Signal>();
    std::deque<Write> waiting;
    Wake wake;
};

} // namespace connector::service
