/// The two threads of a source and what they share.
#pragma once

#include <connector/async/Future.hpp>
#include <connector/etcd/Change.hpp>
#include <connector/etcd/detail/CacheFile.hpp>
#include <connector/etcd/detail/Network.hpp>
#include <connector/etcd/detail/Publication.hpp>
#include <connector/etcd/detail/Settings.hpp>
#include <connector/etcd/detail/Teller.hpp>

#include <chrono>
#include <cstdint>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace connector::etcd::detail {

/// The telling thread shares ownership, because it may be the one that destroys the source, and
/// because it is left alone when an application's function does not return.
class Core : public std::enable_shared_from_this<Core> {
public:
    /// Reads the cache file if the start-up rule says so.
    explicit Core(Settings newSettings);
    ~Core();

    /// @return the table of the cache file, once
    sources::Table takeCachedTable();

    /// @return whether there was a cache file
    bool hasCache() const { return isCached; }

    const Settings& getSettings() const { return settings; }

    /// Starts the threads.
    /// @param table  the present one
    void start(std::shared_ptr<Publication> publication,
               std::shared_ptr<const sources::Table> table);

    /// Ends the threads; see EtcdSource::stop.
    void stop();

    Future<std::int64_t> apply(const std::vector<Change>& changes);

    Teller& getTeller() { return teller; }

private:
    struct Begun;

    Core(Settings newSettings, Begun begun);
    void leaveTellingThread();

    const Settings settings;
    const bool isCached;
    sources::Table cachedTable;
    Teller teller;
    std::mutex stopping; // serialises stop
    bool isStopped = false;
    std::mutex submitting; // guards `isClosed`, and keeps submissions before the end
    bool isClosed = false;
    Network network;
    std::thread networkThread;
    std::thread tellingThread;
    std::future<void> tellingEnded;
};

} // namespace connector::etcd::detail
