/// Builds a document from the values that a reader finds, in the order of the file.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <string>
#include <vector>

namespace connector::sources::detail {

/// Counts depth and values, and reports the position of the value that exceeds a limit.
class DocumentBuilder {
public:
    /// An object or array that is not yet closed.
    struct Frame {
        /// Counts values and height again after the members were changed.
        void measureMembers();

        Place place;
        bool isObject;
        std::uint32_t values = 0;
        std::uint32_t height = 0;
        Node::Elements elements;
        Node::Members members;
        std::string key; ///< of the member whose value comes next
        Place keyPlace;
    };

    // Each throws DocumentError when a limit is exceeded.

    void beginObject(Place place) { begin(place, true); }
    void beginArray(Place place) { begin(place, false); }
    void key(std::string text, Place place);
    /// @return the new node
    const Node* scalar(configuration::OptionValue value, Place place);
    const Node* null(Place place);
    /// Closes the innermost object or array.
    /// @return its node
    const Node* end();

    /// @return a new node that is not yet part of the document
    const Node* detached(configuration::OptionValue value, Place place);
    const Node* detachedNull(Place place);

    /// Adds an existing node once more.
    void alias(const Node* node, Place place) { attach(node, place); }

    /// @return the innermost open object or array; null when there is none
    Frame* innermost() { return frames.empty() ? nullptr : &frames.back(); }

    /// @return the document; the builder must not be used afterwards
    Document take() { return std::move(document); }

private:
    void begin(Place place, bool isObject);
    void attach(const Node* node, Place place);

    Document document;
    std::vector<Frame> frames;
};

} // namespace connector::sources::detail
