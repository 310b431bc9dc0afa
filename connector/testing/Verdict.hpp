/// The results of the conformance kits.
#pragma once

#include <string>
#include <utility>

namespace connector::testing {

/// The result of testing one rule with the sources or publishers of a factory.
struct Verdict {
    bool applies = true; ///< false: the rule does not apply, or is deliberately not followed
    std::string broken;  ///< empty: the rule is kept; otherwise a description of the failure

    static Verdict kept() { return {}; }
    static Verdict notApplicable() { return {false, ""}; }
    static Verdict brokenAs(std::string sentence) { return {true, std::move(sentence)}; }

    /// @return kept, or broken with the sentence
    static Verdict keptIf(bool isKept, const char* sentence) {
        return isKept ? kept() : brokenAs(sentence);
    }
};

} // namespace connector::testing
