#include <connector/sources/detail/Inotify.hpp>

#include <cerrno>
#include <cstring>
#include <sys/inotify.h>
#include <system_error>
#include <unistd.h>

namespace connector::sources::detail {

namespace {

constexpr std::uint32_t itself = IN_MOVE_SELF | IN_DELETE_SELF;

std::uint32_t maskOf(Inotify::Interest interest) {
    switch (interest) {
    case Inotify::Interest::Itself:
        return itself | IN_ONLYDIR;
    case Inotify::Interest::Entries:
        return itself | IN_ONLYDIR | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
               IN_CLOSE_WRITE | IN_ATTRIB;
    case Inotify::Interest::Content:
        return itself | IN_CLOSE_WRITE | IN_ATTRIB;
    }
    return itself;
}

/// @return whether the path was just removed or is not accessible; its parent is watched then
bool isAbsence(int error) {
    return error == ENOENT || error == ENOTDIR || error == EACCES || error == ELOOP ||
           error == ENAMETOOLONG;
}

} // namespace

Inotify::Inotify() : queue(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (queue < 0)
        throw std::system_error(errno, std::generic_category(), "Files cannot be watched");
}

Inotify::~Inotify() {
    ::close(queue);
}

int Inotify::add(const std::filesystem::path& path, Interest interest) {
    const int watch = ::inotify_add_watch(queue, path.c_str(), maskOf(interest) | IN_MASK_ADD);
    if (watch < 0 && !isAbsence(errno))
        throw std::system_error(errno, std::generic_category(), "Files cannot be watched");
    return watch;
}

void Inotify::remove(int watch) {
    ::inotify_rm_watch(queue, watch);
}

std::vector<Inotify::Event> Inotify::read() {
    std::vector<Event> events;
    alignas(inotify_event) char buffer[1u << 14];
    for (;;) {
        const ssize_t length = ::read(queue, buffer, sizeof buffer);
        if (length < 0 && errno == EINTR)
            continue;
        if (length <= 0)
            return events;
        for (ssize_t offset = 0; offset < length;) {
            inotify_event event;
            std::memcpy(&event, buffer + offset, sizeof event);
            const char* const name = buffer + offset + sizeof event;
            events.push_back({event.wd, event.len > 0 ? std::string(name) : std::string()});
            offset += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}

} // namespace connector::sources::detail
