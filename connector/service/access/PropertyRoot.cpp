#include <connector/service/access/PropertyRoot.hpp>

#include <algorithm>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace connector::service {

namespace fs = std::filesystem;

PinnedFile::~PinnedFile() {
    if (descriptor >= 0)
        ::close(descriptor);
}

std::string PinnedFile::path() const {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

bool PinnedFile::isRegular() const {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

std::uintmax_t PinnedFile::size() const {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 ? static_cast<std::uintmax_t>(status.st_size) : 0;
}

bool PinnedFile::isReadable() const {
    const int opened = ::open(path().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (opened >= 0)
        ::close(opened);
    return opened >= 0;
}

PropertyRoot::PropertyRoot(const std::string& directory) {
    std::error_code error;
    root = fs::canonical(directory, error);
    if (error || !fs::is_directory(root, error))
        throw std::runtime_error("Not a directory: " + directory);
}

bool PropertyRoot::contains(const fs::path& path) const {
    return std::mismatch(root.begin(), root.end(), path.begin(), path.end()).first == root.end();
}

std::shared_ptr<const PinnedFile> PropertyRoot::find(const std::string& path) const {
    if (path.find('\0') != path.npos)
        return nullptr; // the operating system would stop reading the path at the NUL
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    if (error || !contains(real))
        return nullptr;
    // O_PATH does not open the file itself: it does not block on a pipe or activate a device.
    const auto file =
        std::make_shared<PinnedFile>(::open(real.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!file->isRegular())
        return nullptr;
    // A link may have appeared in the path since, so check where the opened file really is.
    const fs::path reached = fs::canonical(file->path(), error);
    return !error && contains(reached) && file->isReadable() ? file : nullptr;
}

} // namespace connector::service
