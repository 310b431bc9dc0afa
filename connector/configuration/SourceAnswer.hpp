/// The answer of one source about a key.
#pragma once

#include <connector/configuration/OptionValue.hpp>

#include <optional>
#include <string>

namespace connector::configuration {

struct SourceAnswer {
    std::string name;  ///< under which the source is registered
    std::string group; ///< normalised: empty, or ending in "."
    int order;         ///< smaller is consulted first
    bool readOnly;     ///< whether set skips the source
    bool servesKey; ///< whether the key begins with the group, so that the source is asked at all
    std::optional<OptionValue> value; ///< what the source holds for the key, if it has it
};

} // namespace connector::configuration
