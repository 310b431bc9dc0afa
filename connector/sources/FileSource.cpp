#include <connector/sources/FileSource.hpp>

#include <connector/sources/detail/FileReading.hpp>
#include <connector/sources/detail/FileState.hpp>

#include <mutex>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace connector::sources {

namespace {

FileFormat formatOf(const std::filesystem::path& path) {
    if (const std::optional<FileFormat> format = formatByExtension(path))
        return *format;
    throw std::invalid_argument("The extension of the file names no format: " + path.string());
}

std::filesystem::path madeAbsolute(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::path result = std::filesystem::absolute(path, error);
    if (error)
        throw FileError(path, "The file could not be opened: " + error.message());
    return result;
}

} // namespace

FileSource::FileSource(std::filesystem::path path, FileFormat format, IfMissing ifMissing)
    : state(std::make_unique<detail::FileState>()) {
    state->format = format == FileFormat::ByExtension ? formatOf(path) : format;
    state->path = std::move(path);
    state->file = madeAbsolute(state->path);
    if (ifMissing == IfMissing::Empty && !detail::exists(state->file))
        return;
    FileSource::reload();
}

FileSource::~FileSource() = default;

TableChange FileSource::reload() {
    Exchange exchanged;
    {
        const std::lock_guard<std::mutex> lock(state->reading);
        detail::FileOptions read = detail::readOptions(*state);
        exchanged = exchangeTable(std::move(read.options));
        const std::lock_guard<std::mutex> originLock(state->originMutex);
        state->origin = read.origin;
    }
    tell(exchanged.change);
    return std::move(exchanged.change);
}

const std::filesystem::path& FileSource::path() const noexcept {
    return state->path;
}

FileFormat FileSource::format() const noexcept {
    return state->format;
}

} // namespace connector::sources
