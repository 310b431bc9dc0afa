/// What watch reads from standard input.
#pragma once

#include "arguments/Assignment.hpp"
#include "arguments/FileArgument.hpp"

#include <optional>
#include <string>
#include <variant>

namespace connector_config {

struct SetLine {
    Assignment assignment;
    std::optional<std::string> source;
};
struct AddLine {
    FileArgument file;
};
struct RemoveLine {
    std::string name;
};
struct QuitLine {};

using WatchLine = std::variant<SetLine, AddLine, RemoveLine, QuitLine>;

/// Blanks, that is spaces and tabs, may stand before and between the words; what follows the blanks
/// behind add and remove is the argument, to the end of the line. In
///     set KEY[:TYPE]=VALUE [@SOURCE]
/// a last word that begins with "@" is the source, and the blank before it is no part of VALUE. Every
/// other "@" is, and so is every other blank.
/// @param secrets  whose values a failure does not show
/// @throws WrongArguments
WatchLine parseWatchLine(const std::string& line, const Secrets& secrets);

} // namespace connector_config
