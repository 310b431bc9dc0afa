/// One source of a FileWatcher.
#pragma once

#include <connector/sources/FileSource.hpp>
#include <connector/sources/detail/Inotify.hpp>
#include <connector/sources/detail/WatchedPath.hpp>

#include <chrono>
#include <memory>
#include <optional>

namespace connector::sources::detail {

struct FileState;

/// Knows when its source is to be reloaded. Used by one thread at a time.
class WatchedFile {
public:
    using Clock = std::chrono::steady_clock;

    WatchedFile(std::shared_ptr<FileSource> newSource, FileState& newState);

    /// Follows the path from now on, and notes whether the file is another one than the source has
    /// read.
    /// @throws std::system_error
    void begin(Inotify& inotify, std::chrono::milliseconds settle);

    /// Notes a change, if it concerns the file.
    void note(const Inotify::Event& event, std::chrono::milliseconds settle);

    /// @return when a reload is due; nothing: nothing has happened
    std::optional<Clock::time_point> due() const { return dueAt; }

    /// Follows the path anew before the reload. Nothing is due afterwards.
    /// @throws std::system_error
    void settle(Inotify& inotify);

    /// @return whether there is no file now
    bool isGone() const;

    /// @return whether the disappearance of the file is news
    bool isNewsThatItIsGone();

    const std::shared_ptr<FileSource>& source() const { return file; }
    const WatchedPath& path() const { return watched; }

private:
    const std::shared_ptr<FileSource> file;
    FileState& state; // of the source
    WatchedPath watched;
    std::optional<Clock::time_point> dueAt;
    bool isKnownToBeGone = false;
};

} // namespace connector::sources::detail
