/// The merge key of YAML.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <cstddef>

namespace connector::sources::detail {

/// Merges the members of other mappings into one mapping.
class YamlMerge {
public:
    /// Removes the merge key from the members. Then appends those members of its mappings whose
    /// keys are not present yet; the first mapping comes first.
    /// @param merged  the index of the member with the merge key
    /// @throws DocumentError if its value is neither a mapping nor a list of mappings, and if a
    ///         document merges more members than the limit of values
    void resolve(Node::Members& members, std::size_t merged);

private:
    void visit(const Node& mapping, Place place);

    std::size_t visited = 0; // members of mappings that were merged, in the whole document
};

} // namespace connector::sources::detail
