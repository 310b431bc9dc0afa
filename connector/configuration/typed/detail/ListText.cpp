#include <connector/configuration/typed/detail/ListText.hpp>

#include <cstddef>

namespace connector::configuration::detail {

namespace {

constexpr std::string_view emptyItem = "\\e";

bool isBlank(char character) {
    return character == ' ' || character == '\t';
}

bool isEscapable(char character) {
    return character == ',' || character == '\\' || isBlank(character);
}

/// Reads one item after the other.
class Items {
public:
    explicit Items(std::string_view newText) : text(newText) {}

    std::string next() {
        while (at < text.size() && isBlank(text[at]))
            ++at;
        const std::size_t begin = at;
        std::string item;
        std::size_t kept = 0; // without the blanks at the end
        while (at < text.size() && text[at] != ',') {
            const bool isEscape =
                text[at] == '\\' && at + 1 < text.size() && isEscapable(text[at + 1]);
            const bool isDropped = !isEscape && isBlank(text[at]);
            at += isEscape ? 1 : 0;
            item += text[at++];
            if (!isDropped)
                kept = item.size();
        }
        item.resize(kept);
        return item == emptyItem && text.compare(begin, 2, emptyItem) == 0 ? std::string() : item;
    }

    /// Moves past the comma. @return whether there is one
    bool skipComma() { return at < text.size() && text[at++] == ','; }

private:
    std::string_view text;
    std::size_t at = 0;
};

std::string writeItem(const std::string& item) {
    if (item.empty())
        return std::string(emptyItem);
    std::string text;
    for (std::size_t i = 0; i < item.size(); ++i) {
        const bool isAtBorder = i == 0 || i + 1 == item.size();
        if (item[i] == ',' || item[i] == '\\' || (isAtBorder && isBlank(item[i])))
            text += '\\';
        text += item[i];
    }
    return text;
}

} // namespace

std::vector<std::string> readList(std::string_view text) {
    std::vector<std::string> items;
    if (text.empty())
        return items;
    Items rest(text);
    do
        items.push_back(rest.next());
    while (rest.skipComma());
    return items;
}

std::string writeList(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items)
        text.append(&item == items.data() ? "" : ",").append(writeItem(item));
    return text;
}

} // namespace connector::configuration::detail
