/// The table of differences in docs/checking-files.md.
#pragma once

#include <string>
#include <vector>

namespace test {

struct DocumentedRule {
    std::string rule;
    std::string file;
    std::string library;    ///< what the library reads, as in a finding
    std::string convention; ///< "reads ..." or "refuses the file"
};

std::vector<DocumentedRule> documentedRules();

} // namespace test
