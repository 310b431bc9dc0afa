#include <connector/sources/FileError.hpp>

namespace connector::sources {

namespace {

std::string placed(const std::filesystem::path& path, const std::string& text, std::uint32_t line,
                   std::uint32_t column) {
    const std::string place =
        line == 0 ? "" : ':' + std::to_string(line) + ':' + std::to_string(column);
    return path.string() + place + ": " + text;
}

} // namespace

FileError::FileError(const std::filesystem::path& newPath, const std::string& text,
                     std::uint32_t newLine, std::uint32_t newColumn)
    : runtime_error(placed(newPath, text, newLine, newColumn)), lineNumber(newLine),
      columnNumber(newColumn) {
}

FileError::~FileError() = default;

} // namespace connector::sources
