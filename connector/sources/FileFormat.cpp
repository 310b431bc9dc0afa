#include <connector/sources/FileFormat.hpp>

#include <string>

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

} // namespace

std::optional<FileFormat> formatByExtension(const std::filesystem::path& path) {
    const std::string extension = extensionOf(path);
    if (extension == ".properties")
        return FileFormat::Properties;
    if (extension == ".json")
        return FileFormat::Json;
    if (extension == ".yaml" || extension == ".yml")
        return FileFormat::Yaml;
    if (extension == ".toml")
        return FileFormat::Toml;
    return std::nullopt;
}

} // namespace connector::sources
