/// Watches everything that determines which file a path names.
#pragma once

#include <connector/sources/detail/Inotify.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace connector::sources::detail {

/// Watches the directories on the path, for moves and removals; the entries of the symbolic links
/// on the path and of the file, in their directories; if the path does not exist, the directory in
/// which the next step is missing; and the file itself.
class WatchedPath {
public:
    /// @param newPath  absolute
    explicit WatchedPath(std::filesystem::path newPath) : path(std::move(newPath)) {}

    /// Walks the path again. Every change from then on is reported, because a directory is watched
    /// before its entries are read.
    /// @throws std::system_error when the system's limit of watches is reached
    void follow(Inotify& inotify);

    /// @return whether the event can have changed the file that the path names
    bool concerns(const Inotify::Event& event) const;

    /// @return the numbers of the watches
    const std::vector<int>& watches() const { return numbers; }

private:
    struct Entry {
        int watch;
        std::string name; // empty: the watched file or directory itself
    };

    class Walk;

    const std::filesystem::path path;
    std::vector<Entry> entries;
    std::vector<int> numbers;
};

} // namespace connector::sources::detail
