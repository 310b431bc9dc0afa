/// Everything that decides what stands at a path.
#pragma once

#include <connector/sources/detail/Inotify.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace connector::sources::detail {

/// Watches the way to a file: the directories on it, for being moved; the directories that hold its
/// symbolic links and the file, for changes of these entries; where the way ends early, the
/// directory in which the next step is missing; and the file itself.
class WatchedPath {
public:
    /// @param newPath  absolute
    explicit WatchedPath(std::filesystem::path newPath) : path(std::move(newPath)) {}

    /// Walks the way anew. What changes from then on is reported: a directory is watched before it
    /// is looked into.
    /// @throws std::system_error when the system has no more to give
    void follow(Inotify& inotify);

    /// @return whether what happened can have changed what stands at the path
    bool concerns(const Inotify::Event& event) const;

    /// @return the numbers of what is watched
    const std::vector<int>& watches() const { return numbers; }

private:
    struct Entry {
        int watch;
        std::string name; // empty: what is watched itself
    };

    class Walk;

    const std::filesystem::path path;
    std::vector<Entry> entries;
    std::vector<int> numbers;
};

} // namespace connector::sources::detail
