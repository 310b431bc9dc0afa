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

bool PropertyRoot::isAbove(const fs::path& path) const {
    return std::mismatch(root.begin(), root.end(), path.begin(), path.end()).first == root.end();
}

std::shared_ptr<const PinnedFile> PropertyRoot::find(const std::string& path) const {
    if (path.find('\0') != path.npos)
        return nullptr; // the system would read it as a shorter one
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    if (error || !isAbove(real))
        return nullptr;
    // O_PATH looks without touching: no pipe waits, no device wakes up.
    const auto file =
        std::make_shared<PinnedFile>(::open(real.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!file->isRegular())
        return nullptr;
    // Somebody may have put a link in the way meanwhile, so what counts is where we came out.
    const fs::path reached = fs::canonical(file->path(), error);
    return !error && isAbove(reached) && file->isReadable() ? file : nullptr;
}

} // namespace connector::service
