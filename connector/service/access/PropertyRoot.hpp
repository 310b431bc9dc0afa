/// The one directory from which others may add property files.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace connector::service {

/// A file that was found to be one and cannot become something else: what is read from its path is
/// this file, wherever its name leads by then.
class PinnedFile {
public:
    explicit PinnedFile(int newDescriptor) : descriptor(newDescriptor) {}
    ~PinnedFile();
    PinnedFile(const PinnedFile&) = delete;
    PinnedFile& operator=(const PinnedFile&) = delete;

    /// Leads to the file for as long as this object lives.
    std::string path() const;

    bool isRegular() const;

    /// Without waiting for anything, as a regular file never does.
    bool isReadable() const;

private:
    const int descriptor;
};

class PropertyRoot {
public:
    /// @throws std::runtime_error "Not a directory: " + directory
    explicit PropertyRoot(const std::string& directory);

    /// @param path  with any links and "..", from the working directory unless it begins with "/"
    /// @return the file, if that is a readable regular one below the directory; else nothing
    std::shared_ptr<const PinnedFile> find(const std::string& path) const;

private:
    bool isAbove(const std::filesystem::path& path) const;

    std::filesystem::path root; // without any links
};

} // namespace connector::service
