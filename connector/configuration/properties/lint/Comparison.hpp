/// Where the two readings of a file differ so that the tables differ.
#pragma once

#include <connector/configuration/properties/lint/ConventionReader.hpp>
#include <connector/configuration/properties/lint/LibraryReader.hpp>

#include <cstddef>
#include <string_view>
#include <vector>

namespace connector::configuration::properties::detail {

/// A part of the file, usually a line. At both ends, both readers are in the first column and
/// nothing is pending, so what is read in one segment depends on no other.
struct Segment {
    std::size_t begin;
    std::size_t end; ///< behind the last byte
    /// Indexes of the properties that begin in the segment; the last one is excluded.
    std::size_t firstOfLibrary;
    std::size_t lastOfLibrary;
    std::size_t firstOfConvention;
    std::size_t lastOfConvention;
    /// Whether it has to be written otherwise for the tables to be equal.
    bool differs = false;
};

/// A file, its two readings, and their differences.
struct Comparison {
    std::string_view text;
    LibraryReading library;
    ConventionReading convention;
    std::vector<Segment> segments; ///< in the order of the file, of which they are all
};

/// Marks the segments that matter: if each of them said to both readers what it says to the
/// library now, each key would get its value from the same segment. None is marked if and only if
/// the tables are equal already. A segment in which both differ is not marked if later ones hide
/// that.
/// @param text  must outlive the result
Comparison compare(std::string_view text);

} // namespace connector::configuration::properties::detail
