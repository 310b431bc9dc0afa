/// Why an option has the value that it has.
#pragma once

#include <connector/service/text/Secrets.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

#include <string>
#include <vector>

namespace connector::service {

/// The answers of all sources, and the conclusions from them.
class Explanation {
public:
    using SourceAnswer = configuration::SourceAnswer;

    /// Asks all sources, and masks their values if the key is secret.
    /// @throws what the sources throw
    Explanation(configuration::ConfigurationImpl& configuration, const Secrets& secrets,
                const std::string& key);

    /// Explains answers from elsewhere, and masks them in the same way.
    /// @param newAnswers  in the order of consultation
    Explanation(std::vector<SourceAnswer> newAnswers, const Secrets& secrets, std::string newKey);

    Explanation(const Explanation&) = delete;
    Explanation& operator=(const Explanation&) = delete;

    /// @return the answers, in the order of consultation
    const std::vector<SourceAnswer>& sources() const { return answers; }

    /// @param answer  one of the answers
    bool supplies(const SourceAnswer& answer) const;
    std::string verdictOn(const SourceAnswer& answer) const;

    /// @return the source that set would write to; null if there is none
    const SourceAnswer* targetOfSet() const;

    /// @return what would become of a value that is set; empty if no source would take it
    std::string verdictOnSet() const;

    /// @return {"key", "sources", "set"} as one line without a line break
    std::string json() const;

private:
    using Position = std::vector<SourceAnswer>::const_iterator;

    const std::string key;
    std::vector<SourceAnswer> answers;
    Position supplier; // the end if no source has the key
    Position target;   // of set; the end if there is none
};

} // namespace connector::service
