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

/// Decides when its source is reloaded. Used by one thread at a time.
class WatchedFile {
public:
    using Clock = std::chrono::steady_clock;

    WatchedFile(std::shared_ptr<FileSource> newSource, FileState& newState);

    /// Starts to watch the path, and schedules a reload if the file differs from the one that the
    /// source has read.
    /// @throws std::system_error
    void begin(Inotify& inotify, std::chrono::milliseconds settle);

    /// Schedules a reload if the change concerns the file.
    void note(const Inotify::Event& event, std::chrono::milliseconds settle);

    /// @return when a reload is due; nothing if no change is pending
    std::optional<Clock::time_point> due() const { return dueAt; }

    /// Watches the path again before the reload. No reload is due afterwards.
    /// @throws std::system_error
    void settle(Inotify& inotify);

    /// @return whether the file does not exist now
    bool isGone() const;

    /// @return whether the disappearance of the file was not reported yet
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
