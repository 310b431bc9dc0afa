#include <connector/configuration/properties/lint/Habits.hpp>

#include <connector/configuration/properties/lint/Description.hpp>
#include <connector/configuration/properties/lint/Utf8.hpp>

#include <algorithm>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace connector::configuration::properties::detail {

namespace {

using IsSecret = std::function<bool(std::string_view)>;

std::string lowerCase(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c + ('a' - 'A'));
    }
    return text;
}

class HabitFinder {
public:
    HabitFinder(const Comparison& newFiles, const Lines& newLines, const IsSecret& newIsSecret)
        : files(newFiles), lines(newLines), isSecret(newIsSecret) {}

    std::vector<Reason> find() {
        for (const LibraryProperty& property : files.library.properties) {
            if (!property.isStored)
                continue;
            checkKey(property);
            checkValue(property, decoded(files.text, property.value));
        }
        findInvalidBytes();
        std::stable_sort(
            reasons.begin(), reasons.end(), [](const Reason& left, const Reason& right) {
                return std::tie(left.offset, left.rule) < std::tie(right.offset, right.rule);
            });
        return std::move(reasons);
    }

private:
    void add(std::size_t offset, Rule rule, std::string text) {
        reasons.push_back({offset, rule, std::move(text)});
    }

    std::string lineText(std::size_t offset) const { return std::to_string(lines.lineOf(offset)); }

    void checkKey(const LibraryProperty& property) {
        std::string key = decoded(files.text, property.key);
        const auto [earlier, isNew] = lastOfKey.emplace(key, property.start);
        if (!isNew) {
            add(property.start, Rule::DuplicateKey,
                "the key \"" + shown(key) + "\" is also given on line " +
                    lineText(earlier->second) + "; the value on line " + lineText(property.start) +
                    " replaces that one");
            earlier->second = property.start;
            return;
        }
        const auto [other, isFirst] = firstIgnoringCase.emplace(lowerCase(key), property.start);
        if (!isFirst)
            add(property.start, Rule::Suspicious,
                "the key \"" + shown(key) + "\" differs only in case from the one on line " +
                    lineText(other->second) + "; they are two options");
    }

    void checkValue(const LibraryProperty& property, const std::string& value) {
        // A value may contain a whole property, if a blank has made the key empty.
        const bool isHidden = isSecret(decoded(files.text, property.key)) || isSecret(value);
        const std::string text = isHidden ? hiddenValue : shown(value);
        const bool isQuoted = value.size() >= 2 && value.front() == value.back() &&
                              (value.front() == '"' || value.front() == '\'');
        if (isQuoted)
            add(property.valueStart, Rule::Suspicious,
                "the quotation marks belong to the value " + text);
        const std::size_t placeholder = value.find("${");
        if (placeholder != std::string::npos && value.find('}', placeholder) != std::string::npos)
            add(placeholderOffset(property), Rule::Suspicious,
                "a placeholder is not replaced: the value is " + text);
    }

    std::size_t placeholderOffset(const LibraryProperty& property) const {
        const std::string_view value =
            files.text.substr(property.valueStart, property.end - property.valueStart);
        const std::size_t offset = value.find("${"); // an escape may be in it
        return property.valueStart + (offset != std::string_view::npos ? offset : 0);
    }

    void findInvalidBytes() {
        const std::string_view text = files.text;
        bool isInside = false;
        for (std::size_t i = 0; i < text.size();) {
            const std::size_t length = utf8Length(text.substr(i));
            if (length == 0 && !isInside)
                add(i, Rule::NotUtf8, "bytes that are not UTF-8 begin here: " + invalidAt(i));
            isInside = length == 0;
            i += std::max<std::size_t>(length, 1);
        }
    }

    std::string invalidAt(std::size_t offset) const {
        return shown(files.text.substr(offset, 1)) +
               "; the library keeps them, java.util.Properties reads U+FFFD";
    }

    const Comparison& files;
    const Lines& lines;
    const IsSecret& isSecret;
    std::unordered_map<std::string, std::size_t> lastOfKey;         // its offset
    std::unordered_map<std::string, std::size_t> firstIgnoringCase; // its offset
    std::vector<Reason> reasons;
};

} // namespace

std::vector<Reason> habits(const Comparison& files, const Lines& lines, const IsSecret& isSecret) {
    return HabitFinder(files, lines, isSecret).find();
}

} // namespace connector::configuration::properties::detail
