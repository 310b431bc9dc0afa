/// The error of a file that cannot be read or parsed.
#pragma once

#include <connector/sources/Export.hpp>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace connector::sources {

/// The text is "PATH:LINE:COLUMN: TEXT", or "PATH: TEXT" if there is no position.
class CONNECTOR_SOURCES_EXPORT FileError : public std::runtime_error {
public:
    /// @param newLine  counts from 1; 0: there is no position
    /// @param newColumn  counts from 1, in bytes
    FileError(const std::filesystem::path& newPath, const std::string& text,
              std::uint32_t newLine = 0, std::uint32_t newColumn = 0);
    ~FileError() override;
    FileError(const FileError&) = default;
    FileError& operator=(const FileError&) = default;

    /// @return the line, from 1; 0 if there is no position
    std::uint32_t line() const noexcept { return lineNumber; }
    /// @return the column in bytes, from 1; 0 if there is no position
    std::uint32_t column() const noexcept { return columnNumber; }

private:
    std::uint32_t lineNumber;
    std::uint32_t columnNumber;
};

} // namespace connector::sources
