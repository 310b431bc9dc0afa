#include <connector/configuration/properties/Finding.hpp>

namespace connector::configuration::properties {

const std::vector<RuleDescription>& rules() {
    static const std::vector<RuleDescription> all = {
        {Rule::NoSeparator, "no-separator", "A line without a separator runs on into the next."},
        {Rule::EmptyKey, "empty-key", "A blank at the start of a line makes the key empty."},
        {Rule::SecondSeparator, "second-separator",
         "A second separator is dropped, or kept, unlike in java.util.Properties."},
        {Rule::Escape, "escape",
         "An escape keeps its letter and is a control character in java.util.Properties."},
        {Rule::TrailingBlank, "trailing-blank",
         "Blanks at the end of a line are a value and are dropped in java.util.Properties."},
        {Rule::LeadingBlank, "leading-blank",
         "Blanks before a value belong to it and are dropped in java.util.Properties."},
        {Rule::Continuation, "continuation",
         "A continued line is continued otherwise than in java.util.Properties."},
        {Rule::Comment, "comment", "A comment is a property, because it is not in column 1."},
        {Rule::LostAtEnd, "lost-at-end", "The last property of the file is lost."},
        {Rule::UnicodeEscape, "unicode-escape",
         "A Unicode escape is malformed, or is a half of a surrogate pair."},
        {Rule::ByteOrderMark, "byte-order-mark", "A byte order mark joins the first key."},
        {Rule::Difference, "difference",
         "Any other difference to what java.util.Properties reads."},
        {Rule::DuplicateKey, "duplicate-key", "A key is given twice; the last one is used."},
        {Rule::NotUtf8, "not-utf8", "Bytes are not UTF-8."},
        {Rule::Suspicious, "suspicious",
         "A value in quotes, a placeholder that nothing replaces, or keys that differ only in "
         "case."},
    };
    return all;
}

std::string_view nameOf(Rule rule) {
    return rules().at(static_cast<std::size_t>(rule)).name;
}

std::optional<Rule> ruleNamed(std::string_view name) {
    for (const RuleDescription& description : rules()) {
        if (description.name == name)
            return description.rule;
    }
    return std::nullopt;
}

} // namespace connector::configuration::properties
