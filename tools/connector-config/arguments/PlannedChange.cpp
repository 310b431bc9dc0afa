#include "arguments/PlannedChange.hpp"

#include "values/WrongArguments.hpp"

namespace connector_config {

namespace {

SetLine parseSet(const std::vector<std::string>& words, const Secrets& secrets) {
    SetLine line{parseAssignment(words[1], secrets), std::nullopt};
    if (words.size() == 2)
        return line;
    if (words[2].compare(0, 1, "@") != 0)
        throw WrongArguments("Not of the form @SOURCE: " + words[2]);
    line.source = words[2].substr(1);
    return line;
}

} // namespace

PlannedChange parsePlannedChange(const std::vector<std::string>& words, const Secrets& secrets) {
    const std::string change = words.empty() ? "" : words.front();
    if (change == "set" && (words.size() == 2 || words.size() == 3))
        return parseSet(words, secrets);
    if (change == "add" && words.size() == 2)
        return AddLine{parseFileArgument(words[1])};
    if (change == "remove" && words.size() == 2)
        return RemoveLine{words[1]};
    if (change == "reload" && words.size() == 1)
        return ReloadFiles{};
    throw WrongArguments(
        "plan requires set KEY[:TYPE]=VALUE [@SOURCE], add FILE, remove NAME or reload");
}

} // namespace connector_config
