/// Reloads files when they change.
#pragma once

#include <connector/sources/Export.hpp>
#include <connector/sources/FileSource.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace connector::sources {

/// Follows the files of sources, and reloads a source when its file was written and closed,
/// replaced by another one, removed and made again, or reached through symbolic links of which one
/// was switched, as container platforms do. It follows the name: whatever stands there when a
/// change is over is what is read. Changes that follow each other within `settle` are one reload,
/// `settle` after the last.
///
/// A file that is gone leaves its last values, and is reported once for each disappearance; one
/// that was never there, under IfMissing::Empty, is not reported. A file that changed between its
/// source's construction and the watcher's is reloaded.
///
/// One thread serves all files. It runs the reloads, and so the watchers of the sources and what
/// follows from them, and the two functions. It blocks all signals.
class CONNECTOR_SOURCES_EXPORT FileWatcher {
public:
    /// Called after a reload that changed something.
    using OnReload = std::function<void(const std::shared_ptr<FileSource>&, const TableChange&)>;
    /// Called after a reload that failed; the options are as they were. Also when the file cannot
    /// be followed, or when a watcher of the source threw, with what it said.
    using OnError = std::function<void(const std::shared_ptr<FileSource>&, const FileError&)>;

    /// Changes are seen from the return of the constructor on.
    ///
    /// What the functions throw is dropped: there is nobody to tell it.
    /// @throws std::invalid_argument "A source to watch is null"
    /// @throws std::system_error when the system has no more watchers or threads to give
    explicit FileWatcher(std::vector<std::shared_ptr<FileSource>> sources, OnReload onReload = {},
                         OnError onError = {},
                         std::chrono::milliseconds settle = std::chrono::milliseconds(100));

    /// Stops the thread. Does not wait for changes to settle; a reload that runs, and what it
    /// calls, is waited for, unless it is what destroys the watcher. Nothing is called afterwards.
    ~FileWatcher();
    FileWatcher(const FileWatcher&) = delete;
    FileWatcher& operator=(const FileWatcher&) = delete;

private:
    class Worker;

    const std::shared_ptr<Worker> worker; // shared with its thread
};

} // namespace connector::sources
