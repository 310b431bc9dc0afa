/// Following options: from a change that a source reports to the streams of its key.
#include <connector/configuration/ConfigurationImpl.hpp>

#include <connector/configuration/detail/CoreDiagnostics.hpp>

#include <iostream>
#include <memory>
#include <utility>

namespace connector::configuration {

using detail::logCore;

namespace {

/// Releases a lock for as long as it lives.
class Released {
public:
    explicit Released(std::unique_lock<std::recursive_mutex>& newLock) : lock(newLock) {
        lock.unlock();
    }
    ~Released() { lock.lock(); }
    Released(const Released&) = delete;
    Released& operator=(const Released&) = delete;

private:
    std::unique_lock<std::recursive_mutex>& lock;
};

/// Tells whoever runs the program, who is the only one left to tell: the failure belongs neither to
/// the caller who changed the option nor to the other watchers.
void reportFailedSubscriber(const std::string& key) {
    std::cerr << "Error in configuration value subscriber: " + key + '\n' << std::flush;
}

} // namespace

std::shared_ptr<ConfigurationImpl::OptionPublisher>
ConfigurationImpl::watchOption(const std::string& key) {
    logCore("watchOption: ", key);
    Lock lock(mutex);
    const std::uint64_t id = nextStreamId++;
    // The stream must not keep the configuration alive, nor call it when it is gone.
    const std::weak_ptr<Configuration> self = shared_from_this();
    auto publisher = std::make_shared<OptionPublisher>(
        [id, self] {
            if (const auto alive = self.lock())
                static_cast<ConfigurationImpl&>(*alive).removeStream(id);
        },
        1);
    streams.add(id, key, publisher);

    if (const std::optional<OptionValue> value = valueOf(lock, key)) {
        lock.unlock();
        publisher->onNext(*value);
    }
    return publisher;
}

void ConfigurationImpl::removeStream(std::uint64_t id) {
    // Declared first, so that the publisher goes after the lock: its destructor calls a subscriber.
    std::shared_ptr<OptionPublisher> removed;
    const Lock lock(mutex);
    removed = streams.remove(id);
}

void ConfigurationImpl::updatePublishers(Lock& lock, const std::string& key) {
    logCore("updatePublishers: ", key);
    // Most keys of a source that is added or removed are watched by nobody: that is all it costs then.
    // To look each of them up would take two thirds longer.
    if (!streams.areThereAny(key) && nobodySeesLookups(lock))
        return;
    const std::optional<OptionValue> value = valueOf(lock, key);
    if (!value)
        return; // that a key lost its last value is not announced

    const detail::OptionStreams::Pass pass(streams, key); // goes when the lock is held again
    const Released released(lock);
    for (OptionPublisher* const publisher : pass.publishers()) {
        try {
            logCore("notifying watcher: ", key);
            publisher->onNext(*value);
        } catch (...) {
            reportFailedSubscriber(key);
        }
    }
}

} // namespace connector::configuration
