#include "checking/FileContent.hpp"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace connector_config {

namespace {

class Descriptor {
public:
    explicit Descriptor(int newNumber) : number(newNumber) {}
    ~Descriptor() {
        if (number > STDIN_FILENO)
            ::close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    const int number;
};

/// Throws the error of the last system call, with what was not possible.
[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void check(bool succeeded, const std::string& what) {
    if (!succeeded)
        fail(what);
}

std::string readAll(int descriptor, const std::string& what) {
    std::string content;
    char buffer[65536];
    for (;;) {
        const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
        if (count == 0)
            return content;
        if (count > 0)
            content.append(buffer, static_cast<std::size_t>(count));
        else if (errno != EINTR)
            fail(what);
    }
}

void writeAll(int descriptor, std::string_view content, const std::string& what) {
    while (!content.empty()) {
        const ssize_t count = ::write(descriptor, content.data(), content.size());
        if (count >= 0)
            content.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            fail(what);
    }
}

/// A file beside another one, until it takes the place of that one.
class Replacement {
public:
    Replacement(const std::filesystem::path& target, const std::string& newWhat)
        : what(newWhat), path((target.parent_path() / ".connector-config-XXXXXX").string()),
          file(::mkostemp(path.data(), O_CLOEXEC)) {
        check(file.number >= 0, what);
    }
    ~Replacement() {
        if (!path.empty())
            ::unlink(path.c_str());
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    void write(const std::string& content, const struct stat& status) {
        writeAll(file.number, content, what);
        // The owner first: a change of the owner can take bits of the mode away.
        if (status.st_uid != ::geteuid() || status.st_gid != ::getegid())
            check(::fchown(file.number, status.st_uid, status.st_gid) == 0, what);
        check(::fchmod(file.number, status.st_mode & 07777) == 0, what);
        check(::fsync(file.number) == 0, what);
    }

    void renameOver(const std::filesystem::path& target) {
        check(::rename(path.c_str(), target.c_str()) == 0, what);
        path.clear();
        // The new name must survive a crash, too. Not every file system can sync a directory.
        const Descriptor directory(
            ::open(target.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (directory.number >= 0)
            ::fsync(directory.number);
    }

private:
    const std::string what;
    std::string path;
    const Descriptor file;
};

std::filesystem::path resolved(const std::string& path, const std::string& what) {
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(path.c_str(), nullptr), std::free);
    check(real != nullptr, what);
    return real.get();
}

} // namespace

std::string readFile(const std::string& name) {
    const std::string what = "File could not be read: " + name;
    if (name == "-")
        return readAll(STDIN_FILENO, what);
    const Descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
    check(file.number >= 0, what);
    return readAll(file.number, what);
}

void replaceFile(const std::string& path, const std::string& previous, const std::string& content) {
    const std::string what = "File could not be written: " + path;
    const std::filesystem::path target = resolved(path, what);
    struct stat status {};
    check(::stat(target.c_str(), &status) == 0, what);
    if (!S_ISREG(status.st_mode))
        throw std::runtime_error(what + ": not a regular file");
    check(::access(target.c_str(), W_OK) == 0, what); // a read-only file stays
    Replacement replacement(target, what);
    replacement.write(content, status);
    if (readFile(target.string()) != previous)
        throw std::runtime_error(what + ": it was changed in the meantime");
    replacement.renameOver(target);
}

} // namespace connector_config
