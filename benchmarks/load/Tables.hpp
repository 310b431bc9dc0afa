/// The contestants whose result is a table like the library's.
#pragma once

#include "LiteralParser.hpp"
#include "PropertyFile.hpp"

#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <boost/variant/get.hpp>

#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace bench {

using connector::configuration::OptionValue;

class Ours {
public:
    explicit Ours(int entries)
        : source(std::u16string(path(entries).begin(), path(entries).end())) {}

    std::string valueOf(const std::string& key) { return boost::get<std::string>(source.get(key)); }
    std::size_t size() { return source.keys().size(); }

private:
    static const std::string& path(int entries) { return PropertyFile::ofEntries(entries).path; }

    connector::configuration::PropertyFileSource source;
};

class LiteralTable {
public:
    std::string valueOf(const std::string& key) const {
        return boost::get<std::string>(table.at(key));
    }
    std::size_t size() const { return table.size(); }

protected:
    std::unordered_map<std::string, OptionValue> table;
};

/// The minimal cost of such a table: the file is read at once, the table is created in its final
/// size, and the positions of keys and values are known in advance.
class Floor : public LiteralTable {
public:
    explicit Floor(int entries) {
        const std::string text = read(PropertyFile::ofEntries(entries).path);
        const std::vector<PropertyFile::Place>& split = places(entries);
        table.reserve(split.size());
        for (const PropertyFile::Place& place : split)
            table.try_emplace(std::string(text, place.key, place.keyLength),
                              std::string(text, place.value, place.valueLength));
    }

private:
    static std::string read(const std::string& path) {
        std::ifstream stream(path, std::ios_base::binary | std::ios_base::ate);
        std::string text(static_cast<std::size_t>(stream.tellg()), '\0');
        stream.seekg(0);
        stream.read(text.data(), static_cast<std::streamsize>(text.size()));
        return text;
    }

    static const std::vector<PropertyFile::Place>& places(int entries) {
        static std::unordered_map<int, std::vector<PropertyFile::Place>> places;
        std::vector<PropertyFile::Place>& found = places[entries];
        if (found.empty())
            found = PropertyFile::ofEntries(entries).places();
        return found;
    }
};

/// The documented behaviour step by step.
class Literal : public LiteralTable {
public:
    explicit Literal(int entries) {
        std::ifstream stream(PropertyFile::ofEntries(entries).path, std::ios_base::binary);
        parseLiterally(stream, table);
    }
};

} // namespace bench
