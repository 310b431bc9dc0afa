/// The values of watched options, on their way to all clients that watch.
///
/// A change takes this way. The configuration tells ChangedKeys, under its mutex. The network
/// thread asks a worker to read the option, with its source, as of one moment. The worker makes the
/// text of the event, once for all clients. The network thread marks the event for every client
/// that watches the key, and each client takes its next one when its connection has accepted the
/// one before. A key is read again only when the first client has got its last value. So the
/// fastest client sets the pace, a slow one gets the newest value, and one copy of each value is
/// kept at most, for as long as a client still has to get it.
#pragma once

#include <connector/service/events/ChangedKeys.hpp>
#include <connector/service/events/EventSession.hpp>
#include <connector/service/network/Wake.hpp>
#include <connector/service/network/Workers.hpp>
#include <connector/service/text/Secrets.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <boost/asio/io_context.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

namespace connector::service {

/// Used by the network thread only, except for what is said otherwise.
class EventHub {
public:
    /// @param newConfiguration  outlives this object, as the other arguments do
    EventHub(boost::asio::io_context& io, configuration::ConfigurationImpl& newConfiguration,
             const Secrets& newSecrets, Workers& newWorkers);

    /// Called once, and again when a handler of the thread has thrown.
    void start() { wake.start(); }
    void close() noexcept { wake.close(); }

    /// Called now and then. Repeats what had no memory.
    void tick() noexcept;

    /// Adds a client.
    /// @param lastEventId  as the client sent it: if it is an id of this server, the client is told
    ///                     only what has changed since
    /// @param onEvent      called when there is an event for the client
    std::unique_ptr<EventSession> open(WatchedKeys watched, const std::string& lastEventId,
                                       EventSession::OnEvent onEvent);

    /// @return how many keys it keeps in memory
    std::size_t topicCount() const { return topics.size(); }

    /// @return the id of an event as clients see it
    std::string idText(std::uint64_t id) const { return instance + std::to_string(id); }

private:
    friend class EventSession;
    class Reading;
    struct Wanted;
    struct Answer;

    void listenOnce();

    Topic& topicOf(const std::string& key);
    bool join(EventSession& session, Topic& topic);
    static bool startWaiting(EventSession& session, Topic& topic);
    void leave(EventSession& session) noexcept;
    void leave(EventSession& session, Topic& topic) noexcept;
    void delivered(Topic& topic) noexcept;

    void onSignal();
    void onChange(const ChangedKeys::Keys& keys);
    void onChange(const std::string& key);
    void onChange(Topic& topic) noexcept;
    void readAgainIfStale(Topic& topic) noexcept;
    void read(Topic& topic) noexcept;
    void submit();
    static void begin(std::unordered_set<EventSession*>& sessions);

    void apply(const std::vector<Wanted>& wanted, const std::vector<Answer>& answers);
    void tell(Topic& topic, const std::shared_ptr<const std::string>& text, bool isChange);
    void withdraw(Topic& topic) noexcept;
    void forgetIfGone(Topic& topic) noexcept;
    void forgetUnused();
    template <typename Action>
    void forEachBelow(const std::vector<std::string>& prefixes, Action action);
    std::uint64_t seenBy(const std::string& lastEventId) const;

    configuration::ConfigurationImpl& configuration;
    const Secrets& secrets;
    Workers& workers;
    const std::string instance; // tells this server's ids from those of another one
    const std::shared_ptr<const Signal> signal = std::make_shared<Signal>();
    const std::shared_ptr<ChangedKeys> changedKeys = std::make_shared<ChangedKeys>(signal);
    Wake wake;
    std::uint64_t lastId = 0;
    std::map<std::string, Topic> topics; // also without clients, for their last event
    std::unordered_set<EventSession*> prefixSessions;
    std::unordered_set<EventSession*> newSessions;      // their first values are read next
    std::unordered_set<EventSession*> startingSessions; // their first values are being read
    Topic* firstWanted = nullptr;                       // a list of those that are read next
    bool isReading = false;   // one reading at a time: an older value is never told last
    bool lacksMemory = false; // the last reading failed

    std::mutex listening; // guards `registration`; taken by workers only
    std::shared_ptr<const configuration::ConfigurationImpl::KeyListener> registration;
};

} // namespace connector::service
