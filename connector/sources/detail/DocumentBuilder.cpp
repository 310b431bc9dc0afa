#include <connector/sources/detail/DocumentBuilder.hpp>

#include <algorithm>
#include <utility>

namespace connector::sources::detail {

void DocumentBuilder::Frame::measureMembers() {
    values = 0;
    height = 0;
    for (const Member& member : members) {
        values += member.value->values;
        height = std::max(height, member.value->height);
        if (values > mostValues)
            throw DocumentError(member.place, "More than 1000000 values");
    }
}

void DocumentBuilder::key(std::string text, Place place) {
    frames.back().key = std::move(text);
    frames.back().keyPlace = place;
}

const Node* DocumentBuilder::scalar(configuration::OptionValue value, Place place) {
    const Node* const node = detached(std::move(value), place);
    attach(node, place);
    return node;
}

const Node* DocumentBuilder::detached(configuration::OptionValue value, Place place) {
    return &document.nodes.emplace_back(Node{place, 1, 0, std::move(value)});
}

const Node* DocumentBuilder::null(Place place) {
    const Node* const node = detachedNull(place);
    attach(node, place);
    return node;
}

const Node* DocumentBuilder::detachedNull(Place place) {
    return &document.nodes.emplace_back(Node{place, 1, 0, Node::Null()});
}

const Node* DocumentBuilder::end() {
    Frame frame = std::move(frames.back());
    frames.pop_back();
    Node node{frame.place, std::max(frame.values, 1u), frame.height + 1, Node::Null()};
    if (frame.isObject)
        node.content = std::move(frame.members);
    else
        node.content = std::move(frame.elements);
    const Node* const kept = &document.nodes.emplace_back(std::move(node));
    attach(kept, frame.place);
    return kept;
}

void DocumentBuilder::begin(Place place, bool isObject) {
    if (frames.size() == greatestDepth)
        throw DocumentError(place, "Nested deeper than 64");
    frames.push_back({place, isObject, 0, 0, {}, {}, {}, {}});
}

/// An alias can add more depth and more values than were counted when its node was created.
void DocumentBuilder::attach(const Node* node, Place place) {
    if (frames.empty()) {
        document.top = node;
        return;
    }
    if (frames.size() + node->height > greatestDepth)
        throw DocumentError(place, "Nested deeper than 64");
    Frame& frame = frames.back();
    frame.values += node->values; // both at most mostValues
    if (frame.values > mostValues)
        throw DocumentError(place, "More than 1000000 values");
    frame.height = std::max(frame.height, node->height);
    if (frame.isObject)
        frame.members.push_back({std::move(frame.key), frame.keyPlace, node});
    else
        frame.elements.push_back(node);
}

} // namespace connector::sources::detail
