#include <connector/sources/detail/YamlReader.hpp>

#include <connector/sources/detail/DocumentBuilder.hpp>
#include <connector/sources/detail/Text.hpp>
#include <connector/sources/detail/YamlMerge.hpp>
#include <connector/sources/detail/YamlSchema.hpp>

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

#include <optional>
#include <sstream>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace connector::sources::detail {

namespace {

Place placeOf(const YAML::Mark& mark) {
    if (mark.is_null())
        return {};
    return {static_cast<std::uint32_t>(mark.line + 1), static_cast<std::uint32_t>(mark.column + 1)};
}

/// Handles the parser's events for a YAML document.
class Events : public YAML::EventHandler {
public:
    explicit Events(std::string_view newText) : text(newText) {}

    void OnDocumentStart(const YAML::Mark& mark) override {
        if (++documents > 1)
            throw DocumentError(placeOf(mark), "More than one document");
    }
    void OnDocumentEnd() override {}

    void OnNull(const YAML::Mark& mark, YAML::anchor_t anchor) override {
        if (isKey())
            key(mark, nullWord(mark), anchor, std::nullopt);
        else if (collections.empty() && nullWord(mark).empty())
            return; // an empty document
        else
            keep(anchor, builder.null(placeOf(mark)), "");
    }

    void OnScalar(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                  const std::string& value) override {
        lastScalar = mark;
        const YamlType type = typeOf(tag, mark);
        if (isKey() && tag == "?" && value == "<<") {
            mergeKey(placeOf(mark));
            return;
        }
        std::optional<configuration::OptionValue> scalar = yamlScalar(value, type, placeOf(mark));
        if (isKey())
            key(mark, value, anchor, std::move(scalar));
        else if (scalar)
            keep(anchor, builder.scalar(std::move(*scalar), placeOf(mark)), value);
        else
            keep(anchor, builder.null(placeOf(mark)), value);
    }

    void OnAlias(const YAML::Mark& mark, YAML::anchor_t anchor) override {
        const auto found = anchored.find(anchor);
        if (found == anchored.end())
            throw DocumentError(placeOf(mark), "The alias stands inside of what it refers to");
        if (!isKey()) {
            builder.alias(found->second.node, placeOf(mark));
            afterValue();
        } else if (found->second.isScalar) {
            setKey(found->second.text, placeOf(mark));
        } else {
            refuseKey(mark);
        }
    }

    void OnSequenceStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value) override {
        start(mark, tag, anchor, false);
    }
    void OnSequenceEnd() override { end(); }

    void OnMapStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                    YAML::EmitterStyle::value) override {
        start(mark, tag, anchor, true);
    }
    void OnMapEnd() override {
        if (const std::optional<std::size_t> merged = collections.back().merged) {
            DocumentBuilder::Frame& frame = *builder.innermost();
            merge.resolve(frame.members, *merged);
            frame.measureMembers();
        }
        end();
    }

    /// The parser accepts the end of the file in place of a missing closing quotation mark.
    /// @throws DocumentError if the mark is missing
    void checkLastQuotation() const {
        if (lastScalar.is_null())
            return;
        const std::size_t start = startOfContent(static_cast<std::size_t>(lastScalar.pos));
        const char quote = start < text.size() ? text[start] : '\0';
        if ((quote == '"' && !isClosedDouble(start + 1)) ||
            (quote == '\'' && !isClosedSingle(start + 1)))
            throw DocumentError(placeOf(lastScalar), "Invalid YAML: the quotation is not closed");
    }

    Document take() { return builder.take(); }

private:
    struct Collection {
        YAML::anchor_t anchor;
        bool isMapping;
        bool awaitsKey;                    // of a mapping, not a value
        std::optional<std::size_t> merged; // the index of the member with the merge key
    };
    struct Anchored {
        const Node* node;
        bool isScalar;
        std::string text; // of a scalar: its text if it is used as a key
    };

    bool isKey() const {
        return !collections.empty() && collections.back().isMapping && collections.back().awaitsKey;
    }

    static YamlType typeOf(const std::string& tag, const YAML::Mark& mark) {
        const std::optional<YamlType> type = yamlTypeOf(tag);
        if (!type)
            throw DocumentError(placeOf(mark), "The tag is not one of the core schema");
        return *type;
    }

    [[noreturn]] static void refuseKey(const YAML::Mark& mark) {
        throw DocumentError(placeOf(mark), "A key must be a scalar");
    }

    void setKey(const std::string& name, Place place) {
        builder.key(name, place);
        collections.back().awaitsKey = false;
    }

    void key(const YAML::Mark& mark, const std::string& name, YAML::anchor_t anchor,
             std::optional<configuration::OptionValue> value) {
        setKey(name, placeOf(mark));
        if (anchor == 0)
            return;
        const Node* const node = value ? builder.detached(std::move(*value), placeOf(mark))
                                       : builder.detachedNull(placeOf(mark));
        anchored[anchor] = {node, true, name};
    }

    void mergeKey(Place place) {
        if (collections.back().merged)
            throw DocumentError(place, "The key stands here a second time");
        collections.back().merged = builder.innermost()->members.size();
        setKey("<<", place);
    }

    /// Records a scalar that is a value.
    void keep(YAML::anchor_t anchor, const Node* node, const std::string& value) {
        if (anchor != 0)
            anchored[anchor] = {node, true, value};
        afterValue();
    }

    void afterValue() {
        if (!collections.empty())
            collections.back().awaitsKey = true;
    }

    void start(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
               bool isMapping) {
        if (isKey())
            refuseKey(mark);
        const YamlType type = typeOf(tag, mark);
        const bool isUntagged = type == YamlType::Plain || tag == "!";
        if (!isUntagged && type != (isMapping ? YamlType::Mapping : YamlType::Sequence))
            throw DocumentError(placeOf(mark), "The tag is not one of a collection");
        if (isMapping)
            builder.beginObject(placeOf(mark));
        else
            builder.beginArray(placeOf(mark));
        collections.push_back({anchor, isMapping, true, std::nullopt});
    }

    void end() {
        const YAML::anchor_t anchor = collections.back().anchor;
        collections.pop_back();
        const Node* const node = builder.end();
        if (anchor != 0)
            anchored[anchor] = {node, false, ""};
        afterValue();
    }

    /// @return the start of a node's content, after its anchor, tag, comments and line breaks
    std::size_t startOfContent(std::size_t position) const {
        while (position < text.size()) {
            position = text.find_first_not_of(" \t\r\n", position);
            if (position == std::string_view::npos ||
                text.substr(position, 1).find_first_of("&!#") != 0)
                break;
            position = text.find_first_of(text[position] == '#' ? "\n" : " \t\r\n", position);
        }
        return position;
    }

    bool isClosedDouble(std::size_t position) const {
        for (; position < text.size() && text[position] != '"'; ++position) {
            if (text[position] == '\\')
                ++position;
        }
        return position < text.size();
    }

    /// Two consecutive quotation marks represent one in the text.
    bool isClosedSingle(std::size_t position) const {
        for (;;) {
            position = text.find('\'', position);
            if (position == std::string_view::npos)
                return false;
            if (text.substr(position + 1, 1) != "'")
                return true;
            position += 2;
        }
    }

    /// The parser does not report how a null is written.
    std::string nullWord(const YAML::Mark& mark) const {
        const auto position = static_cast<std::size_t>(mark.pos);
        if (mark.is_null() || position >= text.size())
            return "";
        for (const std::string_view word : {"null", "Null", "NULL", "~"}) {
            if (text.substr(position, word.size()) == word)
                return std::string(word);
        }
        return "";
    }

    const std::string_view text;
    DocumentBuilder builder;
    YamlMerge merge;
    std::vector<Collection> collections; // not yet closed
    std::unordered_map<YAML::anchor_t, Anchored> anchored;
    YAML::Mark lastScalar = YAML::Mark::null_mark();
    int documents = 0;
};

/// The parser accepts control characters, including zero bytes.
void refuseControlCharacters(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned byte = static_cast<unsigned char>(text[i]);
        const bool isAllowed =
            byte >= 0x20 ? byte != 0x7F : byte == '\t' || byte == '\n' || byte == '\r';
        if (!isAllowed)
            throw DocumentError(detail::placeOf(text, i), "Invalid YAML: control character");
    }
}

} // namespace

Document readYaml(std::string_view text) {
    refuseControlCharacters(text);
    std::istringstream stream{std::string(text)};
    Events events(text);
    try {
        YAML::Parser parser(stream);
        while (parser.HandleNextDocument(events)) {
        }
    } catch (const YAML::Exception& error) {
        throw DocumentError(placeOf(error.mark), "Invalid YAML: " + error.msg);
    }
    events.checkLastQuotation();
    return events.take();
}

} // namespace connector::sources::detail
