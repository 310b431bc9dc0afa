#include <connector/configuration/properties/lint/Comparison.hpp>

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_map>

namespace connector::configuration::properties::detail {

namespace {

/// Splits the file where both readers begin a line, but never a CR LF.
std::vector<Segment> split(const Comparison& files) {
    const std::string_view text = files.text;
    std::vector<std::size_t> starts;
    std::set_intersection(files.library.lineStarts.begin(), files.library.lineStarts.end(),
                          files.convention.lineStarts.begin(), files.convention.lineStarts.end(),
                          std::back_inserter(starts));
    std::vector<Segment> segments;
    for (const std::size_t start : starts) {
        const bool isInLineBreak = start > 0 && text.substr(start - 1, 2) == "\r\n";
        if (start == text.size() || isInLineBreak)
            continue;
        if (!segments.empty())
            segments.back().end = start;
        segments.push_back({start, text.size(), 0, 0, 0, 0});
    }
    return segments;
}

/// Finds the properties of each segment. Both lists are in the order of the file.
void assignProperties(Comparison& files) {
    const auto next = [](const auto& properties, std::size_t index, std::size_t end) {
        while (index < properties.size() && properties[index].start < end)
            ++index;
        return index;
    };
    std::size_t ofLibrary = 0, ofConvention = 0;
    for (Segment& segment : files.segments) {
        segment.firstOfLibrary = ofLibrary;
        segment.firstOfConvention = ofConvention;
        ofLibrary = next(files.library.properties, ofLibrary, segment.end);
        ofConvention = next(files.convention.properties, ofConvention, segment.end);
        segment.lastOfLibrary = ofLibrary;
        segment.lastOfConvention = ofConvention;
    }
}

/// The last property of a key in one segment; null if a reader has none.
struct Entry {
    Segment* segment;
    const LibraryProperty* library = nullptr;
    const ConventionProperty* convention = nullptr;
};

class Marker {
public:
    explicit Marker(Comparison& newFiles) : files(newFiles) {}

    void mark() {
        for (Segment& segment : files.segments)
            addEntries(segment);
        markMalformed();
        if (std::none_of(files.segments.begin(), files.segments.end(),
                         [](const Segment& segment) { return segment.differs; }) &&
            haveEqualTables())
            return; // by chance, if the same property comes from different segments
        for (auto& [key, entriesOfKey] : entries)
            markBackwards(entriesOfKey);
    }

private:
    using Entries = std::vector<Entry>;

    void addEntries(Segment& segment) {
        for (std::size_t i = segment.firstOfLibrary; i < segment.lastOfLibrary; ++i) {
            const LibraryProperty& property = files.library.properties[i];
            if (property.isStored)
                entryOf(segment, decoded(files.text, property.key), false).library = &property;
        }
        for (std::size_t i = segment.firstOfConvention; i < segment.lastOfConvention; ++i) {
            const ConventionProperty& property = files.convention.properties[i];
            entryOf(segment, property.key.bytes, property.key.hasHalf).convention = &property;
        }
    }

    Entry& entryOf(Segment& segment, std::string key, bool hasHalf) {
        key += hasHalf ? 'h' : 't'; // a key with a half equals none of the library's
        Entries& entriesOfKey = entries[std::move(key)];
        if (entriesOfKey.empty() || entriesOfKey.back().segment != &segment)
            entriesOfKey.push_back({&segment});
        return entriesOfKey.back();
    }

    bool haveEqualTables() const {
        return std::all_of(entries.begin(), entries.end(), [this](const auto& entry) {
            Entry last{nullptr};
            for (const Entry& next : entry.second) {
                last.library = next.library != nullptr ? next.library : last.library;
                last.convention = next.convention != nullptr ? next.convention : last.convention;
            }
            return areEqual(last);
        });
    }

    /// The last segment decides about a key. If it has to be rewritten and the library has no such
    /// key there, the one before decides, and so on.
    void markBackwards(Entries& entriesOfKey) {
        for (auto entry = entriesOfKey.rbegin(); entry != entriesOfKey.rend(); ++entry) {
            if (areEqual(*entry))
                return;
            entry->segment->differs = true;
            if (entry->library != nullptr)
                return;
        }
    }

    bool areEqual(const Entry& entry) const {
        return entry.library != nullptr && entry.convention != nullptr &&
               !entry.convention->value.hasHalf &&
               entry.convention->value.bytes == decoded(files.text, entry.library->value);
    }

    /// A malformed escape makes java.util.Properties refuse the whole file.
    void markMalformed() {
        for (const ConventionEscape& escape : files.convention.escapes) {
            if (escape.kind == ConventionEscape::Kind::Malformed)
                segmentAt(escape.offset).differs = true;
        }
    }

    Segment& segmentAt(std::size_t offset) {
        const auto behind = std::upper_bound(
            files.segments.begin(), files.segments.end(), offset,
            [](std::size_t left, const Segment& segment) { return left < segment.begin; });
        return *(behind - 1);
    }

    Comparison& files;
    std::unordered_map<std::string, Entries> entries;
};

} // namespace

Comparison compare(std::string_view text) {
    Comparison files{text, readAsLibrary(text), readAsConvention(text), {}};
    files.segments = split(files);
    assignProperties(files);
    Marker(files).mark();
    return files;
}

} // namespace connector::configuration::properties::detail
