/// A document of any format, before it is converted to options.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <cstdint>
#include <deque>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

namespace connector::sources::detail {

/// A position in a file. Lines and columns count from 1, columns in bytes. A byte order mark at the
/// start of the file has no column.
struct Place {
    std::uint32_t line = 0; ///< 0: there is no position
    std::uint32_t column = 0;

    friend bool operator<(const Place& left, const Place& right) {
        return std::tie(left.line, left.column) < std::tie(right.line, right.column);
    }
};

/// The error in a document, with its position.
class DocumentError : public std::runtime_error {
public:
    DocumentError(Place newPlace, const std::string& text) : runtime_error(text), where(newPlace) {}

    Place place() const { return where; }

private:
    Place where;
};

struct Node;

/// A member of an object.
struct Member {
    std::string key;
    Place place; ///< of the key
    const Node* value;
};

/// A value of a document. It may occur several times: an alias refers to the same node.
struct Node {
    struct Null {};
    using Elements = std::vector<const Node*>;
    using Members = std::vector<Member>;

    Place place;
    std::uint32_t
        values; ///< scalars, nulls and empty containers in it, aliases followed; at least 1
    std::uint32_t height; ///< of the containers in it, itself included; 0: a scalar or null
    std::variant<Null, configuration::OptionValue, Elements, Members> content;
};

/// Owns all nodes, so that no node owns another: destroying a deep document does not recurse.
struct Document {
    std::deque<Node> nodes;
    const Node* top = nullptr; ///< null: the document is empty
};

/// Limits of a document. A file that exceeds one of them is rejected before it uses more memory or
/// stack than the limit allows.
inline constexpr std::uint32_t greatestDepth = 64;     ///< the top object is 1
inline constexpr std::uint32_t mostValues = 1'000'000; ///< see Node::values
inline constexpr std::size_t largestFile = 64u << 20;  ///< bytes

} // namespace connector::sources::detail
