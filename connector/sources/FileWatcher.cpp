#include <connector/sources/FileWatcher.hpp>

#include <connector/sources/detail/FileState.hpp>
#include <connector/sources/detail/Inotify.hpp>
#include <connector/sources/detail/WakeUp.hpp>
#include <connector/sources/detail/WatchedFile.hpp>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <exception>
#include <mutex>
#include <optional>
#include <poll.h>
#include <set>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

namespace connector::sources {

using detail::Inotify;
using detail::WatchedFile;
using Clock = WatchedFile::Clock;

/// The thread and its data. The thread shares ownership, because one of the functions may destroy
/// the watcher.
class FileWatcher::Worker : public std::enable_shared_from_this<Worker> {
public:
    Worker(OnReload newOnReload, OnError newOnError, std::chrono::milliseconds newSettle)
        : onReload(std::move(newOnReload)), onError(std::move(newOnError)), settle(newSettle) {}

    void add(const std::shared_ptr<FileSource>& source, detail::FileState& state) {
        const auto isSame = [&](const WatchedFile& file) { return file.source() == source; };
        if (std::none_of(files.begin(), files.end(), isSame))
            files.emplace_back(source, state).begin(inotify, settle);
    }

    void start() {
        removeUnused(); // none is unused yet; this records those in use
        // The thread inherits the mask, so that only the application's threads handle signals.
        sigset_t all;
        sigset_t before;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
        try {
            thread = std::thread([self = shared_from_this()] { self->run(); });
        } catch (...) {
            pthread_sigmask(SIG_SETMASK, &before, nullptr);
            throw;
        }
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }

    void stop() {
        isStopped.store(true);
        wakeUp.ring();
        if (thread.get_id() == std::this_thread::get_id())
            thread.detach();
        else
            thread.join();
    }

private:
    void run() {
        while (!isStopped.load()) {
            wait();
            noteChanges();
            for (WatchedFile& file : files) {
                if (!isStopped.load() && file.due() && *file.due() <= Clock::now())
                    reload(file);
            }
        }
    }

    /// Waits for a change, for stop, or until a reload is due.
    void wait() const {
        pollfd descriptors[] = {{inotify.descriptor(), POLLIN, 0},
                                {wakeUp.descriptor(), POLLIN, 0}};
        ::poll(descriptors, 2, millisecondsLeft());
    }

    int millisecondsLeft() const {
        std::optional<Clock::time_point> next;
        for (const WatchedFile& file : files) {
            if (file.due() && (!next || *file.due() < *next))
                next = file.due();
        }
        if (!next)
            return -1;
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now()).count();
        return static_cast<int>(std::clamp<std::int64_t>(left, 0, 60'000));
    }

    void noteChanges() {
        for (const Inotify::Event& event : inotify.read()) {
            for (WatchedFile& file : files)
                file.note(event, settle);
        }
    }

    /// Must not throw, even when memory runs out: the thread continues with the next change.
    void reload(WatchedFile& file) noexcept {
        try {
            follow(file);
            TableChange change;
            if (reloadSource(file, change) && !change.empty() && onReload)
                onReload(file.source(), change);
        } catch (...) { // of the functions: no caller could handle it
        }
    }

    void follow(WatchedFile& file) {
        try {
            file.settle(inotify);
            removeUnused();
        } catch (const std::system_error& error) {
            tell(file, FileError(file.source()->path(),
                                 "The file cannot be followed: " + error.code().message()));
        }
    }

    /// @return whether the source has loaded the content of the file
    bool reloadSource(WatchedFile& file, TableChange& change) {
        try {
            change = file.source()->reload();
            return true;
        } catch (const FileError& error) {
            if (!file.isGone() || file.isNewsThatItIsGone())
                tell(file, error);
        } catch (const std::exception& error) {
            tell(file, FileError(file.source()->path(), error.what()));
        }
        return false;
    }

    void tell(const WatchedFile& file, const FileError& error) const {
        if (onError)
            onError(file.source(), error);
    }

    /// Removes the watches that no path needs any more.
    void removeUnused() {
        std::set<int> used;
        for (const WatchedFile& file : files)
            used.insert(file.path().watches().begin(), file.path().watches().end());
        for (const int watch : watches) {
            if (used.count(watch) == 0)
                inotify.remove(watch);
        }
        watches = std::move(used);
    }

    // constant after construction
    const OnReload onReload;
    const OnError onError;
    const std::chrono::milliseconds settle;

    // used only by the thread once it runs
    Inotify inotify;
    std::vector<WatchedFile> files;
    std::set<int> watches;

    detail::WakeUp wakeUp;
    std::atomic<bool> isStopped{false};
    std::thread thread; // used only by the owner of the watcher
};

FileWatcher::FileWatcher(std::vector<std::shared_ptr<FileSource>> sources, OnReload onReload,
                         OnError onError, std::chrono::milliseconds settle)
    : worker(std::make_shared<Worker>(std::move(onReload), std::move(onError),
                                      std::max(settle, std::chrono::milliseconds(0)))) {
    for (const std::shared_ptr<FileSource>& source : sources) {
        if (source == nullptr)
            throw std::invalid_argument("A source to watch is null");
        worker->add(source, *source->state);
    }
    worker->start();
}

FileWatcher::~FileWatcher() {
    worker->stop();
}

} // namespace connector::sources
