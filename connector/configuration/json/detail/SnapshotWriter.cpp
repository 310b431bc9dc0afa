#include <connector/configuration/json/detail/SnapshotWriter.hpp>

#include <connector/configuration/detail/TypeTags.hpp>
#include <connector/configuration/json/detail/SnapshotText.hpp>
#include <connector/configuration/json/detail/Utf.hpp>

#include <stdexcept>

namespace connector::configuration::detail {

namespace {

/// Writes the payload of a value.
struct PayloadText : boost::static_visitor<std::string> {
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(int value) const { return std::to_string(value); }
    std::string operator()(unsigned int value) const { return std::to_string(value); }
    std::string operator()(double value) const { return numberJson(value); }
    std::string operator()(const std::string& value) const { return textJson(value); }
    std::string operator()(const std::u16string& value) const { return textJson(toUtf8(value)); }

    template <typename Element>
    std::string operator()(const std::vector<Element>& elements) const {
        std::string text = "[";
        for (const Element& element : elements) {
            text += text.size() == 1 ? "" : ", ";
            text += (*this)(element);
        }
        return text + "]";
    }
};

/// Joins the lines of a list. Each line begins with a line break, so an empty list has none.
template <typename List, typename Line>
std::string lines(const List& list, Line line) {
    std::string text;
    for (const auto& element : list)
        text += (text.empty() ? "\n" : ",\n") + line(element);
    return text;
}

} // namespace

std::string SnapshotWriter::document(const std::vector<SourceSnapshot>& sources) const {
    return "{\"format\": 1, \"sources\": [" +
           lines(sources, [this](const SourceSnapshot& one) { return source(one); }) + "]}\n";
}

std::string SnapshotWriter::source(const SourceSnapshot& source) const {
    return " {\"name\": " + textJson(source.name) + ", \"group\": " + textJson(source.group) +
           ", \"order\": " + std::to_string(source.order) +
           ", \"readOnly\": " + (source.readOnly ? "true" : "false") + ", \"entries\": [" +
           lines(source.entries,
                 [&](const auto& one) { return entry(source, one.first, one.second); }) +
           "]}";
}

std::string SnapshotWriter::entry(const SourceSnapshot& source, const std::string& key,
                                  const SnapshotEntry& entry) const {
    const std::string start = "  {\"key\": " + textJson(key);
    if (entry.isMasked || (isSecret && isSecret(source.group + key)))
        return start + ", \"masked\": true}";
    try {
        return start + ", \"value\": {\"type\": \"" + std::string(typeTagOf(entry.value)) +
               "\", \"value\": " + boost::apply_visitor(PayloadText(), entry.value) + "}}";
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("Snapshot cannot be written: value of " + source.group + key +
                                 " in " + source.name + ": " + error.what());
    }
}

} // namespace connector::configuration::detail
