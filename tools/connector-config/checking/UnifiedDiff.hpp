/// The differences of two texts as diff -u shows them.
#pragma once

#include <string>

namespace connector_config {

/// Compares lines that end with LF. Other line breaks are a part of the lines.
/// @param name  of the file in the header
/// @return a patch with three lines of context; empty if the texts are equal
std::string unifiedDiff(const std::string& name, const std::string& before,
                        const std::string& after);

} // namespace connector_config
