#include <connector/service/network/TlsFile.hpp>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace connector::service {

namespace {

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    throw std::runtime_error("TLS file could not be used: " + path + ": " + reason);
}

} // namespace

void checkTlsFile(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        fail(path, std::generic_category().message(errno));
    struct stat status {};
    const bool isFile = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    ::close(descriptor);
    if (!isFile)
        fail(path, "Not a regular file");
}

void checkTlsResult(const boost::system::error_code& error, const std::string& path) {
    if (error)
        fail(path, error.message());
}

} // namespace connector::service
