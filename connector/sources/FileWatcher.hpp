/// Reloads files when they change.
#pragma once

#include <connector/sources/Export.hpp>
#include <connector/sources/FileSource.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace connector::sources {

/// Watches the files of sources. Reloads a source when its file is written and closed, replaced by
/// another file, or removed and created again, and when a symbolic link on its path is switched, as
/// container platforms do. It follows the path, not the file: a reload reads the file that the path
/// names at that time. Changes that follow each other within `settle` cause one reload, `settle`
/// after the last change.
///
/// When a file is removed, its source keeps the last values, and each disappearance is reported
/// once. A file that was missing from the start, under IfMissing::Empty, is not reported. A file
/// that changed between the construction of its source and that of the watcher is reloaded.
///
/// One thread serves all files. It runs the reloads, and therefore the watchers of the sources and
/// everything that they call, and the two functions. It blocks all signals.
class CONNECTOR_SOURCES_EXPORT FileWatcher {
public:
    /// Called after a reload that changed something.
    using OnReload = std::function<void(const std::shared_ptr<FileSource>&, const TableChange&)>;
    /// Called after a reload that failed; the options are unchanged. Also called when the file
    /// cannot be watched, and, with the text of the exception, when a watcher of the source threw.
    using OnError = std::function<void(const std::shared_ptr<FileSource>&, const FileError&)>;

    /// Every change after the constructor has returned is detected.
    ///
    /// Exceptions of the functions are ignored: no caller could handle them.
    /// @throws std::invalid_argument "A source to watch is null"
    /// @throws std::system_error when the system's limit of watches or threads is reached
    explicit FileWatcher(std::vector<std::shared_ptr<FileSource>> sources, OnReload onReload = {},
                         OnError onError = {},
                         std::chrono::milliseconds settle = std::chrono::milliseconds(100));

    /// Stops the thread. Does not wait for changes to settle. Waits for a running reload and for
    /// everything that it calls, unless the destructor is called from there. Nothing is called
    /// afterwards.
    ~FileWatcher();
    FileWatcher(const FileWatcher&) = delete;
    FileWatcher& operator=(const FileWatcher&) = delete;

private:
    class Worker;

    const std::shared_ptr<Worker> worker; // shared with its thread
};

} // namespace connector::sources
