/// The options of a file, which can be read anew.
#pragma once

#include <connector/sources/Export.hpp>
#include <connector/sources/FileError.hpp>
#include <connector/sources/FileFormat.hpp>
#include <connector/sources/TableSource.hpp>

#include <filesystem>
#include <memory>

namespace connector::sources {

namespace detail {
struct FileState;
} // namespace detail

/// Reads a file when it is made, and again with each reload. docs/sources.md says how the documents
/// of each format become options. All operations may be called from any thread.
class CONNECTOR_SOURCES_EXPORT FileSource : public TableSource {
public:
    /// @param path  made absolute at once: that the process enters another directory changes
    ///        nothing
    /// @throws FileError when the file cannot be read or parsed, or is missing under
    ///        IfMissing::Throw
    /// @throws std::invalid_argument "The extension of the file names no format: PATH"
    explicit FileSource(std::filesystem::path path, FileFormat format = FileFormat::ByExtension,
                        IfMissing ifMissing = IfMissing::Throw);
    ~FileSource() override;

    /// Reads the file anew and replaces the table, as TableSource::replace does. Reloads of several
    /// threads follow each other; no lock is held while the watcher runs.
    /// @return how the new table differs from the one before
    /// @throws FileError when the file cannot be read or parsed; the table stays as it was
    /// @throws what the watcher throws, after all keys were told
    TableChange reload();

    /// @return the path that was given
    const std::filesystem::path& path() const noexcept;

    /// @return the format that is read; never ByExtension
    FileFormat format() const noexcept;

private:
    friend class FileWatcher;

    const std::unique_ptr<detail::FileState> state;
};

} // namespace connector::sources
