#include <connector/sources/detail/YamlMerge.hpp>

#include <string_view>
#include <unordered_set>
#include <utility>

namespace connector::sources::detail {

namespace {

/// @return the mappings that a merge key names
Node::Elements mappingsIn(const Node& value) {
    if (const auto* const elements = std::get_if<Node::Elements>(&value.content))
        return *elements;
    return {&value};
}

} // namespace

void YamlMerge::resolve(Node::Members& members, std::size_t merged) {
    const Member mergeKey = std::move(members[merged]);
    members.erase(members.begin() + static_cast<std::ptrdiff_t>(merged));
    std::unordered_set<std::string_view> keys;
    for (const Member& member : members)
        keys.insert(member.key);
    Node::Members others;
    for (const Node* const mapping : mappingsIn(*mergeKey.value)) {
        visit(*mapping, mergeKey.place);
        for (const Member& member : std::get<Node::Members>(mapping->content)) {
            if (keys.insert(member.key).second)
                others.push_back(member);
        }
    }
    members.insert(members.end(), std::make_move_iterator(others.begin()),
                   std::make_move_iterator(others.end()));
}

void YamlMerge::visit(const Node& mapping, Place place) {
    const auto* const members = std::get_if<Node::Members>(&mapping.content);
    if (members == nullptr)
        throw DocumentError(place, "A merge key takes a mapping or a list of mappings");
    visited += members->size() + 1;
    if (visited > mostValues)
        throw DocumentError(place, "More than 1000000 values");
}

} // namespace connector::sources::detail
