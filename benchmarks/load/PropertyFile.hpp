/// The files that the contestants load.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// A temporary file of different properties, 41.8 bytes a line on average including the line break.
/// It is removed when the program ends.
class PropertyFile {
public:
    /// Where a key and its value are in the file: the result of parsing.
    struct Place {
        std::size_t key;
        std::size_t keyLength;
        std::size_t value;
        std::size_t valueLength;
    };

    /// @param heading  text before the first property, for formats that need one
    PropertyFile(int newEntries, const std::string& heading);
    ~PropertyFile();
    PropertyFile(const PropertyFile&) = delete;
    PropertyFile& operator=(const PropertyFile&) = delete;

    /// @return the file with that many properties, which the first call creates
    static const PropertyFile& ofEntries(int entries);
    /// @return the same with "[options]" as its first line
    static const PropertyFile& ofEntriesInSection(int entries);

    static std::string key(int number);
    static std::string value(int number);

    std::vector<Place> places() const;

    const int entries;
    const std::size_t headingLength;
    const std::string path;
};

} // namespace bench
