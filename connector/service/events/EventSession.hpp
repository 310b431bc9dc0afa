/// What one client watches, and what it still has to be told.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace connector::service {

class EventHub;
class EventSession;

struct WatchedKeys {
    std::vector<std::string> keys;
    std::vector<std::string> prefixes; ///< every key that begins with one of these
};

/// @return the prefixes in ascending order, without those that begin with another one
std::vector<std::string> outermost(std::vector<std::string> prefixes);

/// A server-sent event: the line with its id, and the rest, which all clients share.
struct Event {
    std::string idLine;
    std::shared_ptr<const std::string> text;
};

/// A watched key.
struct Topic {
    std::string key;
    std::uint64_t changeId = 0; ///< the event of the last change; 0 before the first value
    std::shared_ptr<const std::string> text; ///< of that event, while a client has to get it
    std::size_t owed = 0;                    ///< clients that have to get it and have not begun to
    std::size_t sending = 0;                 ///< clients that are getting an event of this key
    bool wasDelivered = false;               ///< whether a client has got it
    bool isStale = false;        ///< whether the option has changed since it was read last
    bool isWanted = false;       ///< whether it is in the list of those to be read next
    bool isAbsent = false;       ///< whether there was no such option when it was read last
    std::size_t named = 0;       ///< sessions that watch the key itself, not only a prefix
    Topic* nextWanted = nullptr; ///< in that list, which needs no memory
    std::unordered_set<EventSession*> sessions;
    std::unordered_set<EventSession*> waiting; ///< sessions that want the value, not a change

    bool isOnItsWay() const { return !wasDelivered && owed + sending > 0; }
};

/// Used by the network thread only.
class EventSession {
public:
    using OnEvent = std::function<void()>;

    EventSession(EventHub& newHub, WatchedKeys newWatched, std::uint64_t newSeen,
                 OnEvent newOnEvent);

    ~EventSession(); ///< the client is told nothing any more
    EventSession(const EventSession&) = delete;
    EventSession& operator=(const EventSession&) = delete;

    /// Must not be called again before `sent`.
    /// @return the next event for the client; nothing if it knows everything
    std::optional<Event> next();

    /// The connection of the client has accepted the event.
    void sent();

private:
    friend class EventHub;

    bool matchesPrefix(const std::string& key) const;

    EventHub& hub;
    const WatchedKeys watched; // with the outermost prefixes only
    const std::uint64_t seen;  // events up to this one were known when the client came
    const OnEvent onEvent;
    std::map<std::uint64_t, Topic*> pending; // by event: an id that is told covers all before it
    Topic* beingSent = nullptr;
    bool hasBegun = false;      // whether all first values are known, so that they go in order
    bool wantsPrefixes = false; // whether the options below the prefixes are to be read
};

} // namespace connector::service
