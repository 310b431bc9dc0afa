/// The merge key of YAML.
#pragma once

#include <connector/sources/detail/Document.hpp>

#include <cstddef>

namespace connector::sources::detail {

/// Puts the members of other mappings among those of one.
class YamlMerge {
public:
    /// Takes the value of a merge key out of the members, and puts behind them those members of the
    /// mappings in it whose keys are not there yet, those of the first mapping first.
    /// @param merged  the index of the member whose value it is
    /// @throws DocumentError when it is neither a mapping nor a list of mappings, and when a
    ///         document merges more than there may be values
    void resolve(Node::Members& members, std::size_t merged);

private:
    void visit(const Node& mapping, Place place);

    std::size_t visited = 0; // members of mappings that were merged, in the whole document
};

} // namespace connector::sources::detail
