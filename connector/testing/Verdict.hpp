/// What the conformance kits say.
#pragma once

#include <string>
#include <utility>

namespace connector::testing {

/// What a rule says of the sources or publishers of a factory.
struct Verdict {
    bool applies =
        true;           ///< false: they never do what the rule is about, or do otherwise on purpose
    std::string broken; ///< empty: the rule is kept; otherwise a sentence that says what went wrong

    static Verdict kept() { return {}; }
    static Verdict notApplicable() { return {false, ""}; }
    static Verdict brokenAs(std::string sentence) { return {true, std::move(sentence)}; }

    /// @return kept, or broken as the sentence says
    static Verdict keptIf(bool isKept, const char* sentence) {
        return isKept ? kept() : brokenAs(sentence);
    }
};

} // namespace connector::testing
