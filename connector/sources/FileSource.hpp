/// The options of a file that can be reloaded.
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

/// Reads a file during construction, and again with each reload. docs/sources.md describes how the
/// documents of each format are converted to options. All operations may be called from any thread.
class CONNECTOR_SOURCES_EXPORT FileSource : public TableSource {
public:
    /// @param path  made absolute at once: a later change of the working directory has no effect
    /// @throws FileError when the file cannot be read or parsed, or is missing under
    ///        IfMissing::Throw
    /// @throws std::invalid_argument "The extension of the file names no format: PATH"
    explicit FileSource(std::filesystem::path path, FileFormat format = FileFormat::ByExtension,
                        IfMissing ifMissing = IfMissing::Throw);
    ~FileSource() override;

    /// Reads the file again and replaces the table, as TableSource::replace does. Concurrent
    /// reloads are serialised; no lock is held while the watcher runs.
    /// @return the differences between the new table and the previous one
    /// @throws FileError when the file cannot be read or parsed; the table stays as it was
    /// @throws the exception of the watcher, after the watcher was called for every key
    ///
    /// A FileWatcher reloads through this function, too. A derived class can override it to act
    /// before and after every reload; it must call this implementation. The constructor does not
    /// call the override.
    virtual TableChange reload();

    /// @return the path that was passed to the constructor
    const std::filesystem::path& path() const noexcept;

    /// @return the format of the file; never ByExtension
    FileFormat format() const noexcept;

private:
    friend class FileWatcher;

    const std::unique_ptr<detail::FileState> state;
};

} // namespace connector::sources
