#include <connector/sources/detail/FileReading.hpp>

#include <connector/sources/FileError.hpp>
#include <connector/sources/detail/JsonReader.hpp>
#include <connector/sources/detail/Options.hpp>
#include <connector/sources/detail/PropertiesReader.hpp>
#include <connector/sources/detail/Text.hpp>
#include <connector/sources/detail/TomlReader.hpp>
#include <connector/sources/detail/YamlReader.hpp>

#include <cerrno>
#include <limits>
#include <stdexcept>
#include <string>
#include <system_error>

namespace connector::sources::detail {

namespace {

Document readDocument(FileFormat format, std::string_view text) {
    if (format == FileFormat::Json)
        return readJson(text);
    return format == FileFormat::Yaml ? readYaml(text) : readToml(text);
}

Table optionsIn(const FileState& state, const std::string& bytes) {
    if (state.format == FileFormat::Properties)
        return readProperties(bytes);
    try {
        return optionsOf(readDocument(state.format, checkedText(bytes)));
    } catch (const DocumentError& error) {
        throw FileError(state.path, error.what(), error.place().line, error.place().column);
    }
}

} // namespace

FileText readText(const FileState& state) {
    const bool isLimited = state.format != FileFormat::Properties;
    try {
        return readFile(state.file,
                        isLimited ? largestFile : std::numeric_limits<std::size_t>::max());
    } catch (const std::system_error& error) {
        throw FileError(state.path, "The file could not be read: " + error.code().message());
    } catch (const std::length_error&) {
        throw FileError(state.path, "The file is larger than 64 MiB");
    }
}

FileOptions readOptions(const FileState& state) {
    const FileText text = readText(state);
    return {optionsIn(state, text.bytes), {text.stamp, text.hash()}};
}

bool exists(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    return status.type() != std::filesystem::file_type::not_found;
}

} // namespace connector::sources::detail
