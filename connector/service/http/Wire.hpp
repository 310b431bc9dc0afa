/// The bytes to and from one client, within a time that is given to the client as a whole: one that
/// sends a byte now and then is as late as one that sends nothing.
#pragma once

#include <connector/service/http/Ending.hpp>

#include <Poco/Net/StreamSocket.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace connector::service {

/// The client has gone, or there is no more time for it.
class ClientLost : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
class ClientLate : public ClientLost {
public:
    ClientLate() : ClientLost("Request did not arrive in time") {}
};

/// For one thread.
class Wire {
public:
    Wire(Poco::Net::StreamSocket newSocket, const Ending& newEnding, Clock::duration patience);

    /// Waits for bytes and appends them.
    /// @return false at the end of what the client sends
    /// @throws ClientLate, ClientLost
    bool receive(std::string& buffer);

    /// The same for a client that has said nothing yet, which nobody waits for once the server ends.
    bool receiveFirst(std::string& buffer);

    /// What the client takes at once is sent even if there is no time to wait for it.
    /// @throws ClientLate, ClientLost
    void send(std::string_view bytes) { send(bytes, 0); }

    /// The same for what need not be on its way before the bytes behind it.
    void sendWithMore(std::string_view bytes);

    /// Ends our half and forgets what still comes, for a while: a client that is told something
    /// while it sends must not lose that to a connection that is reset.
    void hangUp(Clock::duration patience) noexcept;

    /// Waits for nothing from now on longer than this.
    void extend(Clock::duration patience) { deadline = Clock::now() + patience; }

    const Poco::Net::StreamSocket& socket() const { return client; }

private:
    void waitFor(short event);
    void send(std::string_view bytes, int flags);
    int descriptor() const { return client.impl()->sockfd(); }

    Poco::Net::StreamSocket client;
    const Ending& ending;
    Clock::time_point deadline;
};

} // namespace connector::service
