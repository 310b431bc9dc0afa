/// Differences as people and programs read them.
#pragma once

#include "comparing/Differences.hpp"
#include "display/Terminal.hpp"
#include "display/TextTable.hpp"

#include <connector/service/text/Secrets.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

#include <string>
#include <vector>

namespace connector_config {

using connector::service::Secrets;

/// A table with the option before, behind "-", and after, behind "+". Masks secrets.
class DifferenceTable {
public:
    /// @param newSecrets  must outlive this object
    explicit DifferenceTable(const Secrets& newSecrets) : secrets(newSecrets) {}

    /// @param note  stands in the last column of the last line; empty for none
    void add(const Difference& difference, const std::string& note = "");

    /// Adds a line of its own.
    /// @param sign  stands in front of the key
    void add(const std::string& sign, const Option& option, const std::string& note);

    /// @return the table with a header; an empty text if there is no line
    std::string text(const Terminal& terminal) const;

private:
    const Secrets& secrets;
    std::vector<std::vector<Cell>> rows;
};

/// @return {"key", "change", "before": {"source", "value"}, "after": {"source", "value"}}, where
///         "change" is "added", "removed", "changed" or "moved"; secrets are masked
Poco::JSON::Object::Ptr toJson(const Difference& difference, const Secrets& secrets);

/// @return the strings as an array
Poco::JSON::Array::Ptr toJson(const std::vector<std::string>& texts);

/// Names the keys on standard error whose values could not be compared, if there are any.
void reportMasked(const std::vector<std::string>& keys);

} // namespace connector_config
