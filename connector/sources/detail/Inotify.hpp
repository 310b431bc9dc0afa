/// What the system tells of changes in directories.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace connector::sources::detail {

/// A queue of changes. Used by one thread at a time.
class Inotify {
public:
    /// What happened to something that is watched.
    struct Event {
        int watch;        ///< what add answered; -1: some events were lost
        std::string name; ///< of the entry of a directory; empty: what is watched itself
    };

    /// What of a watched thing matters.
    enum class Interest : std::uint8_t {
        Itself,  ///< a directory that is moved or removed
        Entries, ///< a directory and the entries in it
        Content, ///< a file that is written, moved or removed
    };

    /// @throws std::system_error
    Inotify();
    ~Inotify();
    Inotify(const Inotify&) = delete;
    Inotify& operator=(const Inotify&) = delete;

    /// Watches something, or adds an interest to what is watched already.
    /// @return its number; -1 when there is nothing at the path that can be watched so
    /// @throws std::system_error when the system has no more to give
    int add(const std::filesystem::path& path, Interest interest);

    /// Ends a watch; one that has ended already is ignored.
    void remove(int watch);

    /// @return what happened since the last call; does not wait
    std::vector<Event> read();

    /// @return a descriptor that is readable when something happened
    int descriptor() const { return queue; }

private:
    const int queue;
};

} // namespace connector::sources::detail
