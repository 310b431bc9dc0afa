/// Notifications of the system about changes of files and directories.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace connector::sources::detail {

/// A queue of changes. Used by one thread at a time.
class Inotify {
public:
    /// A change of a watched file or directory.
    struct Event {
        int watch;        ///< the result of add; -1: some events were lost
        std::string name; ///< of the directory's entry; empty: the watched file itself
    };

    /// Which changes to report.
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

    /// Watches a path, or adds an interest to an existing watch.
    /// @return the number of the watch; -1 if the path cannot be watched with this interest
    /// @throws std::system_error when the system's limit of watches is reached
    int add(const std::filesystem::path& path, Interest interest);

    /// Removes a watch; a watch that was removed before is ignored.
    void remove(int watch);

    /// @return the changes since the last call; does not block
    std::vector<Event> read();

    /// @return a descriptor that is readable when changes are pending
    int descriptor() const { return queue; }

private:
    const int queue;
};

} // namespace connector::sources::detail
