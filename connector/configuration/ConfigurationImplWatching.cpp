/// Following options: from a change that a source reports to the streams of its key.
#include <connector/configuration/ConfigurationImpl.hpp>

#include <connector/configuration/detail/CoreDiagnostics.hpp>
#include <connector/configuration/detail/FailedSubscriber.hpp>
#include <connector/configuration/registry/Precedence.hpp>
#include <connector/configuration/sources/detail/LookupScope.hpp>
#include <connector/configuration/watching/NotificationPass.hpp>

#include <algorithm>
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

} // namespace

std::shared_ptr<ConfigurationImpl::OptionPublisher>
ConfigurationImpl::watchOption(const std::string& key) {
    logCore("watchOption: ", key);
    Lock lock(mutex);
    const std::uint64_t id = nextStreamId++;
    // The stream must not keep the configuration alive, nor call it once it is destroyed.
    const std::weak_ptr<Configuration> self = shared_from_this();
    auto publisher = std::make_shared<OptionPublisher>(
        [id, self] {
            if (const auto alive = self.lock())
                static_cast<ConfigurationImpl&>(*alive).removeStream(id);
        },
        1);
    localKeyBuffer.reserve(key.size()); // so that the lookup below does not run out of memory
    streams.add(id, key, publisher);

    // If a source throws from here on, the stream stays listed.
    detail::LookupScope lookup;
    const detail::Supplier supplier = detail::findSupplier(sources, key, lookup, localKeyBuffer);
    if (mayReadDirectly(supplier))
        offerFirst(id, *publisher, *supplier.value);
    else if (supplier.record != nullptr)
        offerFirst(id, *publisher, doGet(lock, key));
    return publisher;
}

/// Offers a stream its first value. The caller holds the lock until then: a newer value that was
/// offered earlier would be evicted by this one. The stream cannot have a subscriber yet, so no
/// subscriber runs under the lock.
void ConfigurationImpl::offerFirst(std::uint64_t id, OptionPublisher& publisher,
                                   const OptionValue& value) {
    try {
        publisher.onNext(value);
    } catch (...) { // no memory: a stream without an owner must not stay listed
        streams.remove(id);
        throw;
    }
}

void ConfigurationImpl::removeStream(std::uint64_t id) {
    // Declared first, so that the publisher is destroyed after the lock: its destructor calls a
    // subscriber.
    detail::OptionStreams::Publisher removed;
    const Lock lock(mutex);
    removed = streams.remove(id);
}

ConfigurationSource::Watcher ConfigurationImpl::watcherFor(const std::string& group) {
    // A source can outlive the configuration, and can call its watcher while another thread
    // destroys the configuration. So an owned configuration is held weakly, and kept alive during
    // the call. This does not apply to one without an owner, nor to the built-in sources, which are
    // made before there is an owner.
    const std::weak_ptr<Configuration> owned = weak_from_this();
    const bool isOwned = !owned.expired();
    return [this, owned, isOwned, group](const std::string& key) {
        const std::shared_ptr<Configuration> alive = owned.lock();
        if (isOwned && alive == nullptr)
            return;
        Lock lock(mutex);
        for (ConfigurationSourceMap& record : sources)
            record.table.refresh(); // otherwise a later lookup would have to destroy the old table
        updatePublishers(lock, group + key);
    };
}

std::optional<OptionValue> ConfigurationImpl::effectiveValue(Lock& lock, const std::string& key) {
    detail::LookupScope lookup;
    const detail::Supplier supplier = detail::findSupplier(sources, key, lookup, localKeyBuffer);
    if (supplier.record == nullptr)
        return std::nullopt;
    if (mayReadDirectly(supplier))
        return *supplier.value;
    return doGet(lock, key);
}

void ConfigurationImpl::updatePublishers(Lock& lock, const std::string& key) {
    logCore("updatePublishers: ", key);
    if (!listeners.empty())
        notifyListeners(key);
    // Most keys of a source that is added or removed have no watchers. Without this, adding a
    // source would take two thirds longer.
    if (!streams.hasWatchers(key) && lookupsAreUnobservable())
        return;
    const std::optional<OptionValue> value = effectiveValue(lock, key);
    if (!value)
        return; // the loss of a key's last value is not reported

    const detail::NotificationPass pass(streams, key); // destroyed when the lock is held again
    const Released released(lock);
    for (OptionPublisher* const publisher : pass.publishers()) {
        try {
            logCore("notifying watcher: ", key);
            publisher->onNext(*value);
        } catch (...) {
            detail::reportFailedSubscriber(key);
        }
    }
}

std::shared_ptr<const ConfigurationImpl::KeyListener>
ConfigurationImpl::listen(KeyListener listener) {
    auto registration = std::make_shared<const KeyListener>(std::move(listener));
    const Lock lock(mutex);
    listeners.push_back(registration);
    return registration;
}

void ConfigurationImpl::notifyListeners(const std::string& key) {
    const auto isGone = [&key](const std::weak_ptr<const KeyListener>& registered) {
        const auto listener = registered.lock();
        if (listener != nullptr)
            (*listener)(key);
        return listener == nullptr;
    };
    listeners.erase(std::remove_if(listeners.begin(), listeners.end(), isGone), listeners.end());
}

/// @return whether a lookup whose result is not needed can be skipped
bool ConfigurationImpl::lookupsAreUnobservable() const {
    return !detail::coreLogger.enabled(detail::coreSeverity) && detail::allAreOwnTables(sources);
}

} // namespace connector::configuration
