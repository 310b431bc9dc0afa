/// Parses the lines that watch reads from standard input.
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

/// Words are separated by spaces and tabs, which may also precede the first word. The argument of
/// add and remove extends to the end of the line. In
///     set KEY[:TYPE]=VALUE [@SOURCE]
/// a last word that begins with "@" is the source; the space or tab before it is not part of VALUE.
/// VALUE includes every other "@", space and tab.
/// @param secrets  keys whose values are masked in failures
/// @throws WrongArguments
WatchLine parseWatchLine(const std::string& line, const Secrets& secrets);

} // namespace connector_config
