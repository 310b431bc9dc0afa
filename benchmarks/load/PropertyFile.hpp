/// The files that the contestants load.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// A temporary file of properties that are all different, 41.8 bytes a line on average, line break
/// included. It goes when the program ends.
class PropertyFile {
public:
    /// Where a key and its value stand in the file: what is left when the work of splitting is done.
    struct Place {
        std::size_t key;
        std::size_t keyLength;
        std::size_t value;
        std::size_t valueLength;
    };

    /// @param heading  text before the first property, for formats that ask for one
    PropertyFile(int newEntries, const std::string& heading);
    ~PropertyFile();
    PropertyFile(const PropertyFile&) = delete;
    PropertyFile& operator=(const PropertyFile&) = delete;

    /// @return the one file with that many properties, made at the first call
    static const PropertyFile& ofEntries(int entries);
    /// @return the same with the line "[options]" at its head
    static const PropertyFile& ofEntriesInSection(int entries);

    static std::string key(int number);
    static std::string value(int number);

    std::vector<Place> places() const;

    const int entries;
    const std::size_t headingLength;
    const std::string path;
};

} // namespace bench
