#include <connector/configuration/typed/InvalidSettings.hpp>

#include <utility>

namespace connector::configuration {

namespace {

std::string describeAll(const std::vector<OptionProblem>& problems) {
    std::string text;
    for (const OptionProblem& problem : problems)
        text.append(text.empty() ? "" : "\n").append(describe(problem));
    return text;
}

} // namespace

std::string describe(const OptionProblem& problem) {
    if (problem.key.empty()) // a rule of a schema without a prefix
        return problem.text;
    const std::string source = problem.source.empty() ? "" : " from " + problem.source;
    return problem.key + source + ": " + problem.text;
}

InvalidSettings::InvalidSettings(std::vector<OptionProblem> newProblems)
    : std::runtime_error(describeAll(newProblems)),
      details(std::make_shared<const std::vector<OptionProblem>>(std::move(newProblems))) {
}

InvalidSettings::~InvalidSettings() = default;

} // namespace connector::configuration
