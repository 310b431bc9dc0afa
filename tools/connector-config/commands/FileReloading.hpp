/// Reloads the files of the sources.
#pragma once

#include "commands/HangupThread.hpp"
#include "commands/NamedFile.hpp"

#include <connector/sources/FileWatcher.hpp>

#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace connector_config {

enum class ReloadResult { Succeeded, Failed };

/// Reloads all files when SIGHUP arrives, and each file when it changes, if it is to follow them.
/// Writes one line to standard error for each reload:
///     reloaded NAME: 2 added, 1 changed, 0 removed
/// or the failure. A reload because of a change that added, changed and removed nothing is not
/// reported. Pipes and devices are never reloaded. All operations may be called from any thread.
class FileReloading {
public:
    using OnReload = std::function<void(ReloadResult)>;
    using OnHangup = std::function<void(const std::function<void()>& reload)>;

    /// blockHangup must have been called before. The threads of this object block all signals. They
    /// run the reloads, and therefore everything that the sources' watchers call.
    /// @param newFollows   whether to reload a file when it changes
    /// @param newOnReload  called for each reload that is reported, possibly on several threads at
    ///                     the same time; must not throw
    /// @param newOnHangup  called for SIGHUP in place of `reload`, which it calls; must not throw
    /// @throws std::system_error when the system's limit of watches or threads is reached
    FileReloading(const NamedFiles& files, bool newFollows, OnReload newOnReload = {},
                  const OnHangup& onHangup = {});

    /// Waits for reloads in progress. Must not be called from a reload; the same holds for remove.
    ~FileReloading();
    FileReloading(const FileReloading&) = delete;
    FileReloading& operator=(const FileReloading&) = delete;

    /// Adds a file that is reloaded from now on.
    /// @throws std::system_error as the constructor; the file is not added then
    void add(const std::shared_ptr<NamedFile>& file);

    /// Removes a file that is not reloaded any more, except by a reloadAll in progress.
    /// @param name  of the source; an unknown one is ignored
    void remove(const std::string& name);

    /// Reloads each file once, in the order in which they were added, and reports each.
    void reloadAll();

private:
    using FileWatcher = connector::sources::FileWatcher;

    struct Entry {
        std::shared_ptr<NamedFile> file;
        std::unique_ptr<const FileWatcher> watcher; // null if files are not followed
    };

    std::unique_ptr<const FileWatcher> follow(const std::shared_ptr<NamedFile>& file) const;
    NamedFiles allFiles() const;
    void reload(NamedFile& file) const;
    void report(const std::string& name, const connector::sources::TableChange& change) const;
    void report(const std::exception& failure) const;

    const bool follows;
    const OnReload onReload;
    mutable std::mutex mutex; // guards `entries`; not held during a reload
    std::vector<Entry> entries;
    std::optional<HangupThread> hangup; // last, because it uses the other members
};

} // namespace connector_config
