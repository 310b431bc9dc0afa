#include <connector/sources/detail/WatchedFile.hpp>

#include <connector/sources/detail/FileReading.hpp>
#include <connector/sources/detail/FileState.hpp>
#include <connector/sources/detail/FileText.hpp>

#include <algorithm>
#include <mutex>
#include <utility>

namespace connector::sources::detail {

namespace {

std::optional<FileState::Origin> originOf(FileState& state) {
    const std::lock_guard<std::mutex> lock(state.originMutex);
    return state.origin;
}

/// The timestamps of a file system can be coarse: a file that was changed this recently can have
/// been changed a second time with the same timestamp.
bool isDoubtful(const FileStamp& stamp) {
    constexpr std::int64_t slowest = 2'500'000'000; // nanoseconds; some tick every two seconds
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::nanoseconds(now).count() - std::max(stamp.changed, stamp.modified) <
           slowest;
}

/// @return whether the file or its text differs from the one that was read
bool isAnother(const std::optional<FileState::Origin>& origin, const FileState& state) {
    const std::optional<FileStamp> now = stampOf(state.file);
    if (!now || !origin)
        return true;
    if (*now == origin->stamp && !isDoubtful(*now))
        return false;
    try {
        return readText(state).hash() != origin->hash;
    } catch (const FileError&) {
        return true; // the reload reports the error
    }
}

} // namespace

WatchedFile::WatchedFile(std::shared_ptr<FileSource> newSource, FileState& newState)
    : file(std::move(newSource)), state(newState), watched(state.file) {
}

void WatchedFile::begin(Inotify& inotify, std::chrono::milliseconds settle) {
    watched.follow(inotify);
    const std::optional<FileState::Origin> origin = originOf(state);
    isKnownToBeGone = !origin && isGone();
    if (!isKnownToBeGone && isAnother(origin, state))
        dueAt = Clock::now() + settle;
}

void WatchedFile::note(const Inotify::Event& event, std::chrono::milliseconds settle) {
    if (watched.concerns(event))
        dueAt = Clock::now() + settle;
}

void WatchedFile::settle(Inotify& inotify) {
    dueAt.reset();
    watched.follow(inotify);
    if (!isGone())
        isKnownToBeGone = false;
}

bool WatchedFile::isGone() const {
    return !stampOf(state.file);
}

bool WatchedFile::isNewsThatItIsGone() {
    return !std::exchange(isKnownToBeGone, true);
}

} // namespace connector::sources::detail
