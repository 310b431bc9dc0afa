/// Tables of property files, in the two forms that the readers have.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace test {

using Table = std::map<std::string, std::string>;
using UnicodeTable = std::map<std::u16string, std::u16string>;

/// @return what PropertyFileSource reads
Table readByLibrary(const std::string& text);

/// @return the same in UTF-16; nothing if a key or a value is not UTF-8
std::optional<UnicodeTable> unicodeTable(const Table& table);

/// @return UTF-16 of text in UTF-8 that may have surrogates of three bytes
std::u16string toUtf16(const std::string& text);

/// @return whether a Java runtime is installed that can run a source file
bool hasJava();

/// Reads each file with java.util.Properties, as UTF-8 text without a byte order mark.
/// @return the tables; nothing for a file that it refuses
/// @throws std::runtime_error if the program fails
std::vector<std::optional<UnicodeTable>> readByJava(const std::vector<std::string>& files);

} // namespace test
