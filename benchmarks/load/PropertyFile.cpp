#include "PropertyFile.hpp"

#include "../Harness.hpp"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>

namespace bench {

namespace {

using Files = std::map<int, std::unique_ptr<PropertyFile>>;

const PropertyFile& oneOf(Files& files, int entries, const std::string& heading) {
    std::unique_ptr<PropertyFile>& file = files[entries];
    if (!file)
        file = std::make_unique<PropertyFile>(entries, heading);
    return *file;
}

std::string newPath() {
    static int count = 0;
    const std::string name =
        "load-" + std::to_string(getpid()) + "-" + std::to_string(count++) + ".properties";
    return (std::filesystem::temp_directory_path() / name).string();
}

} // namespace

PropertyFile::PropertyFile(int newEntries, const std::string& heading)
    : entries(newEntries), headingLength(heading.size()), path(newPath()) {
    std::ofstream stream(path, std::ios_base::binary);
    stream << heading;
    for (int number = 0; number < entries; ++number)
        stream << key(number) << '=' << value(number) << '\n';
    if (!stream.flush())
        throw std::runtime_error("cannot write " + path);
}

PropertyFile::~PropertyFile() {
    std::remove(path.c_str());
}

const PropertyFile& PropertyFile::ofEntries(int entries) {
    static Files files;
    return oneOf(files, entries, "");
}

const PropertyFile& PropertyFile::ofEntriesInSection(int entries) {
    static Files files;
    return oneOf(files, entries, "[options]\n");
}

std::string PropertyFile::key(int number) {
    return keyNumber(number);
}

std::string PropertyFile::value(int number) {
    // Flags, numbers and some longer texts: 41.8 bytes a line on average
    constexpr std::size_t lineLengths[] = {28, 55, 32, 59, 35};
    constexpr std::size_t punctuation = 2;
    return textNumber(number, lineLengths[number % 5] - punctuation - key(number).size());
}

std::vector<PropertyFile::Place> PropertyFile::places() const {
    std::vector<Place> places;
    places.reserve(static_cast<std::size_t>(entries));
    std::size_t begin = headingLength;
    for (int number = 0; number < entries; ++number) {
        const std::size_t keyLength = key(number).size();
        const std::size_t valueLength = value(number).size();
        places.push_back({begin, keyLength, begin + keyLength + 1, valueLength});
        begin += keyLength + valueLength + 2;
    }
    return places;
}

} // namespace bench
