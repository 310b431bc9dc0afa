/// The differences in lines, keys, separators and continuations.
#pragma once

#include <connector/configuration/properties/lint/Explanation.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace connector::configuration::properties::detail {

/// Follows the library through the first property of a segment and compares each step with what
/// java.util.Properties does there, as long as both are in step: in the same part of the same
/// property.
class PropertyReasons {
public:
    /// @param newSegment  has a property of the library
    PropertyReasons(const Comparison& newFiles, const Segment& newSegment);

    /// @return the reasons, unless only escapes differ
    std::vector<Reason> find();

private:
    /// Where java.util.Properties is once the key has ended.
    enum class Phase : std::uint8_t {
        Separator, ///< accepts "=" or ":"
        Assigned,  ///< had one; skips white space
        Value,
    };

    // Each returns whether both are still in step behind the part.
    bool followLineStart();
    bool followKey();
    bool followKeyRun(std::size_t first, std::size_t last);
    bool followSeparator();
    bool followValue();
    bool followContinuations(std::size_t position, std::size_t end);

    void followValueRun(const Piece& piece, bool isContinued);
    void addFormFeedInKey(std::size_t offset);
    void addJoinedLines();
    void addLost(bool isInStep);
    std::size_t endOfValue() const;
    bool isBlankToEndOfLine(std::size_t offset) const;
    bool isEndOfFile(std::size_t offset) const;
    bool conventionHasPropertyIn(std::size_t first, std::size_t last) const;
    void add(std::size_t offset, Rule rule, const char* reason);

    const Comparison& files;
    const std::string_view text;
    const Segment& segment;
    const LibraryProperty& property;
    Phase phase = Phase::Separator;
    std::vector<Reason> reasons;
};

} // namespace connector::configuration::properties::detail
