/// Makes sockets that listen.
#pragma once

#include <connector/service/HttpOptions.hpp>

#include <cstdint>
#include <string>

#include <sys/socket.h>
#include <sys/types.h>

namespace connector::service {

/// Tells a file from another one that has its path later.
struct FileIdentity {
    dev_t device = 0;
    ino_t number = 0;
};

/// Removes a file, unless there is another one at its path now.
void removeFile(const std::string& path, const FileIdentity& identity) noexcept;

/// Owns the descriptor until it is released.
class ListeningSocket {
public:
    ListeningSocket(int newDescriptor, int newFamily)
        : family(newFamily), descriptor(newDescriptor) {}
    ~ListeningSocket();
    ListeningSocket(ListeningSocket&& other) noexcept;
    ListeningSocket& operator=(ListeningSocket&&) = delete;

    int get() const { return descriptor; }
    int release();

    const int family;
    std::string name;  ///< "HOST:PORT" with the port that was chosen, or the path
    FileIdentity file; ///< of a Unix socket

private:
    int descriptor;
};

/// A Unix socket has the mode 0600. One that no server listens on is replaced.
/// @return a socket that listens and does not block
/// @throws std::runtime_error "Cannot listen on " + address + ": " + reason
ListeningSocket listenOn(const ListenAddress& address);

/// @return the port of an address of IPv4 or IPv6
std::uint16_t portOf(const sockaddr_storage& address);

} // namespace connector::service
