/// The one directory below which clients may add property files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace connector::service {

/// A file that stays the same whatever happens to its name: opening path() opens this very file.
class PinnedFile {
public:
    /// @param newDescriptor  opened with O_PATH; this object closes it
    explicit PinnedFile(int newDescriptor) : descriptor(newDescriptor) {}
    ~PinnedFile();
    PinnedFile(const PinnedFile&) = delete;
    PinnedFile& operator=(const PinnedFile&) = delete;

    /// @return a path that leads to the file as long as this object lives
    std::string path() const;

    bool isRegular() const;

    /// @return in bytes; 0 if unknown
    std::uintmax_t size() const;

    /// Does not block if the file is a regular one.
    bool isReadable() const;

private:
    const int descriptor;
};

class PropertyRoot {
public:
    /// @throws std::runtime_error "Not a directory: " + directory
    explicit PropertyRoot(const std::string& directory);

    /// Resolves links and "..". A relative path starts at the working directory of the process.
    /// @return the file, or null unless it is a readable regular file below the directory
    std::shared_ptr<const PinnedFile> find(const std::string& path) const;

private:
    bool contains(const std::filesystem::path& path) const;

    std::filesystem::path root; // without links
};

} // namespace connector::service
