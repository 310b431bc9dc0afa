/// Settings that a schema refuses.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/typed/OptionProblem.hpp>

#include <memory>
#include <stdexcept>
#include <vector>

namespace connector::configuration {

/// Contains all problems at once; what() describes one per line.
class CONNECTOR_EXPORT InvalidSettings : public std::runtime_error {
public:
    explicit InvalidSettings(std::vector<OptionProblem> newProblems);
    InvalidSettings(const InvalidSettings&) noexcept = default;
    InvalidSettings& operator=(const InvalidSettings&) noexcept = default;
    ~InvalidSettings() override;

    const std::vector<OptionProblem>& problems() const { return *details; }

private:
    std::shared_ptr<const std::vector<OptionProblem>> details; // no copy of an exception throws
};

} // namespace connector::configuration
