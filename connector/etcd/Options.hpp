/// How an EtcdSource reaches its engine.
#pragma once

#include <connector/etcd/Startup.hpp>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace connector::etcd {

/// The files of a TLS connection, in PEM format. They are read again for every connection, so
/// renewed certificates need no restart.
struct TlsFiles {
    std::filesystem::path authorities; ///< empty: those of the system
    std::filesystem::path certificate; ///< of this client; empty: none
    std::filesystem::path key;         ///< of that certificate
};

/// The times of the protocol. The defaults keep the promises of the documents: a source knows
/// within 4 s that it is stale, and is current again 30 s after the engine answers at the latest.
struct Timing {
    std::chrono::milliseconds probeInterval{1'000}; ///< between two signs of life
    std::chrono::milliseconds answerTimeout{2'500}; ///< of every call but those of a list
    std::chrono::milliseconds pageTimeout{10'000};  ///< of each page of a list
    std::chrono::milliseconds catchUpTime{250};     ///< silence after which a watch has caught up
    std::chrono::milliseconds firstPause{50};       ///< the bound of the first pause
    std::chrono::milliseconds longestPause{30'000}; ///< the bound of pause and attempts together
    std::chrono::milliseconds cacheDelay{500};      ///< from a change to the cache file
};

struct Options {
    /// "http://HOST:PORT" or "https://HOST:PORT"; an IPv6 address is in brackets. All must belong
    /// to one cluster.
    std::vector<std::string> endpoints;
    std::string prefix; ///< of all keys; not empty
    std::string user;   ///< empty: no authentication
    std::string password;
    std::filesystem::path passwordFile; ///< read for each authentication, instead of `password`; a
                                        ///< line break at its end is no part of the password
    TlsFiles tls;                       ///< for the endpoints with https
    std::filesystem::path cacheFile;    ///< empty: none
    Startup startup = Startup::Wait(std::chrono::seconds(5));
    std::chrono::milliseconds writeTimeout{5'000}; ///< of put, erase and apply
    Timing timing;
};

} // namespace connector::etcd
