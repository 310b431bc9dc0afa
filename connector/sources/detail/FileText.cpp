#include <connector/sources/detail/FileText.hpp>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace connector::sources::detail {

namespace {

/// An open file.
class Descriptor {
public:
    explicit Descriptor(const std::filesystem::path& path)
        : number(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (number < 0)
            throw std::system_error(errno, std::generic_category());
    }
    ~Descriptor() { ::close(number); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    /// @return how many bytes were read; 0 at the end
    std::size_t read(char* place, std::size_t length) const {
        for (;;) {
            const ssize_t count = ::read(number, place, length);
            if (count >= 0)
                return static_cast<std::size_t>(count);
            if (errno != EINTR)
                throw std::system_error(errno, std::generic_category());
        }
    }

    const int number;
};

std::int64_t nanoseconds(const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

FileStamp stampOf(const struct stat& status) {
    return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
            nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

} // namespace

std::optional<FileStamp> stampOf(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return stampOf(status);
}

FileText readFile(const std::filesystem::path& path, std::size_t largest) {
    // The system would use the part before a zero byte as the name of the file.
    if (path.native().find('\0') != std::string::npos)
        throw std::system_error(ENOENT, std::generic_category());
    const Descriptor file(path);
    struct stat status {};
    if (::fstat(file.number, &status) != 0)
        throw std::system_error(errno, std::generic_category());
    FileText text{{}, stampOf(status)};
    constexpr std::size_t step = 1u << 16;
    text.bytes.reserve(std::min<std::size_t>(text.stamp.size, largest) + step);
    for (;;) {
        const std::size_t length = text.bytes.size();
        text.bytes.resize(length + step);
        const std::size_t count = file.read(text.bytes.data() + length, step);
        text.bytes.resize(length + count);
        if (count == 0)
            return text;
        if (text.bytes.size() > largest)
            throw std::length_error("larger than allowed");
    }
}

} // namespace connector::sources::detail
