#include <connector/sources/FileSource.hpp>

#include <connector/sources/detail/FileReading.hpp>
#include <connector/sources/detail/FileState.hpp>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace connector::sources {

namespace {

/// @return the extension in lower case, ASCII
std::string extensionOf(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return extension;
}

FileFormat formatOf(const std::filesystem::path& path) {
    const std::string extension = extensionOf(path);
    if (extension == ".properties")
        return FileFormat::Properties;
    if (extension == ".json")
        return FileFormat::Json;
    if (extension == ".yaml" || extension == ".yml")
        return FileFormat::Yaml;
    if (extension == ".toml")
        return FileFormat::Toml;
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
    reload();
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
