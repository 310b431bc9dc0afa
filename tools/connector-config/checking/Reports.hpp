/// The findings as people and programs read them.
#pragma once

#include "checking/CheckedFile.hpp"

#include <string>
#include <vector>

namespace connector_config {

/// @return "FILE:LINE:COLUMN: warning: TEXT [RULE]" for each finding
std::string asLines(const std::vector<CheckedFile>& files);

/// @return {"files": [{"file": F, "findings": [{"line": L, "column": C, "rule": R, "text": T}]}]};
///         a file that could not be read or written also has an "error"
std::string asJson(const std::vector<CheckedFile>& files);

/// @return a log of SARIF 2.1.0
std::string asSarif(const std::vector<CheckedFile>& files);

} // namespace connector_config
