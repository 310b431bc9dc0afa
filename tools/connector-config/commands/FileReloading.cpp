#include "commands/FileReloading.hpp"

#include "display/Output.hpp"

#include <algorithm>
#include <exception>

namespace connector_config {

using connector::sources::FileError;
using connector::sources::FileSource;
using connector::sources::FileWatcher;
using connector::sources::TableChange;

FileReloading::FileReloading(const NamedFiles& files, bool newFollows, OnReload newOnReload,
                             const OnHangup& onHangup)
    : follows(newFollows), onReload(std::move(newOnReload)) {
    for (const std::shared_ptr<NamedFile>& file : files)
        add(file);
    const auto reload = [this] { reloadAll(); };
    hangup.emplace([reload, onHangup] { // only now: a signal may have arrived already
        onHangup ? onHangup(reload) : reload();
    });
}

FileReloading::~FileReloading() = default;

void FileReloading::add(const std::shared_ptr<NamedFile>& file) {
    if (!file->canBeReloaded())
        return;
    Entry entry{file, follows ? follow(file) : nullptr};
    const std::lock_guard<std::mutex> lock(mutex);
    entries.push_back(std::move(entry));
}

/// A watcher for each file, because a watcher cannot stop following one of its files.
std::unique_ptr<const FileWatcher>
FileReloading::follow(const std::shared_ptr<NamedFile>& file) const {
    return std::make_unique<const FileWatcher>(
        std::vector<std::shared_ptr<FileSource>>{file},
        [this, name = file->argument().name](const auto&, const TableChange& change) {
            report(name, change);
        },
        [this](const auto&, const FileError& error) { report(error); });
}

void FileReloading::remove(const std::string& name) {
    Entry removed; // destroyed after unlocking, because its watcher waits for a reload in progress
    const std::lock_guard<std::mutex> lock(mutex);
    const auto entry = std::find_if(entries.begin(), entries.end(), [&](const Entry& candidate) {
        return candidate.file->argument().name == name;
    });
    if (entry == entries.end())
        return;
    removed = std::move(*entry);
    entries.erase(entry);
}

void FileReloading::reloadAll() {
    for (const std::shared_ptr<NamedFile>& file : allFiles())
        reload(*file);
}

NamedFiles FileReloading::allFiles() const {
    const std::lock_guard<std::mutex> lock(mutex);
    NamedFiles files;
    for (const Entry& entry : entries)
        files.push_back(entry.file);
    return files;
}

void FileReloading::reload(NamedFile& file) const {
    try {
        report(file.argument().name, file.reload());
    } catch (const std::exception& failure) {
        report(failure);
    }
}

void FileReloading::report(const std::string& name, const TableChange& change) const {
    printNotice("reloaded " + name + ": " + std::to_string(change.added.size()) + " added, " +
                std::to_string(change.changed.size()) + " changed, " +
                std::to_string(change.removed.size()) + " removed");
    if (onReload)
        onReload(ReloadResult::Succeeded);
}

void FileReloading::report(const std::exception& failure) const {
    printError(failure.what());
    if (onReload)
        onReload(ReloadResult::Failed);
}

} // namespace connector_config
