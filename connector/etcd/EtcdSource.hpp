/// The keys below a prefix of etcd as options, and how to write them.
#pragma once

#include <connector/async/Future.hpp>
#include <connector/etcd/Change.hpp>
#include <connector/etcd/Conflict.hpp>
#include <connector/etcd/Export.hpp>
#include <connector/etcd/Options.hpp>
#include <connector/etcd/Status.hpp>
#include <connector/etcd/Unknown.hpp>
#include <connector/sources/TableSource.hpp>

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace connector::etcd {

namespace detail {
class Core;
} // namespace detail

/// Reads all keys of the prefix, then watches them. The option of a key is the key without the
/// prefix. Lookups are answered from memory; they never wait for the network. While the engine
/// cannot be followed, the last values stay.
///
/// A value is the JSON object of an option value, {"type": T, "value": V}, or any other UTF-8 text,
/// which is a string. A value that cannot be read keeps the last good one of its key. A change of
/// the engine, of any number of keys, is one change of the table.
///
/// Two threads belong to each source. One reads the network; it never calls out and takes no lock
/// of a configuration's. The other one replaces the table, and calls the watcher, the handlers
/// below and the continuations of futures. Both block all signals.
///
/// The first source of a process turns off what gRPC writes to standard error, unless the
/// environment variable GRPC_VERBOSITY is set.
///
/// All operations may be called from any thread. None but the constructor, waitFor and stop waits.
class CONNECTOR_ETCD_EXPORT EtcdSource : public sources::TableSource {
public:
    /// Starts the threads, then does what options.startup says.
    /// @throws std::invalid_argument when an endpoint cannot be read, there is none, or the prefix
    ///         is empty
    /// @throws std::runtime_error "etcd does not answer: CAUSE" after the time of Startup::Wait, if
    ///         there is no cache file to begin with
    explicit EtcdSource(Options options);

    /// As stop.
    ~EtcdSource() override;

    /// Writes one option. The table has the value when the watch reports it, which may be before or
    /// after the future is resolved.
    /// @param expectedRevision  see Change
    /// @return the revision at which it was written; or Conflict; or Unknown; or std::runtime_error
    ///         "Not written: CAUSE"; or std::invalid_argument when the key is empty or the text is
    ///         not valid Unicode.
    ///
    /// The thread that calls the watcher resolves the future. So do not call its get in a watcher,
    /// in a subscriber of the configuration or in a handler, nor while you hold a lock that one of
    /// these needs; attach a continuation there.
    Future<std::int64_t> put(const std::string& key, const configuration::OptionValue& value,
                             std::optional<std::int64_t> expectedRevision = {});

    /// The same for string literals, which would otherwise be converted to a bool.
    /// @param text  not null
    Future<std::int64_t> put(const std::string& key, const char* text,
                             std::optional<std::int64_t> expectedRevision = {});

    /// Erases one option; otherwise as put. To erase a key that does not exist changes nothing.
    Future<std::int64_t> erase(const std::string& key,
                               std::optional<std::int64_t> expectedRevision = {});

    /// Does all changes in one transaction, or none; otherwise as put.
    /// @param changes  1 to 128, of different keys; otherwise std::invalid_argument in the future
    Future<std::int64_t> apply(std::vector<Change> changes);

    /// @return a copy of the present status
    Status status() const;

    /// Replaces the handler, which is called with the present status first, then whenever the
    /// state, the failure or the unreadable keys have changed. Changes that follow each other
    /// quickly may be reported as one. The last call has State::Stopped.
    /// @param handler  called without a lock; what it throws is passed to the handler of onError.
    ///        Empty: none
    void onStatus(std::function<void(const Status&)> handler);

    /// Replaces the handler for what the watcher or another handler throws. Without a handler, such
    /// exceptions are dropped. What this handler throws is dropped.
    void onError(std::function<void(std::exception_ptr)> handler);

    /// Waits until the table is at this revision or a later one, and the watcher has been called
    /// for it. Do not call it where get of a future is forbidden, see put.
    /// @return whether it is; false when the time has passed or the source is stopped
    bool waitFor(std::int64_t revision, std::chrono::milliseconds timeout) const;

    /// Ends both threads, within one second whatever the network does. The values stay. Writes that
    /// were sent and not answered are Unknown, others fail. If the watcher or a handler still runs
    /// after half a second, it is left to end on its own; it is not called again. Calling stop
    /// again does nothing.
    void stop();

    /// Replaces the watcher, as TableSource::setWatcher does.
    void setWatcher(Watcher newWatcher) override;

private:
    using TableSource::replace; // the engine is the only writer

    class Publication;

    const std::shared_ptr<detail::Core> core;
    const std::shared_ptr<Publication> publication;
};

} // namespace connector::etcd
