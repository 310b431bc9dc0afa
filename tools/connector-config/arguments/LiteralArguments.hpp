/// Arguments that CLI11 must not interpret.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class Option;
}

namespace connector_config {

/// Marks each argument that CLI11 would interpret though it must be taken literally. Every text
/// that CLI11 returns must go through unmarked.
/// @return the arguments without the program's name, in the reverse order that CLI11 expects
std::vector<std::string> markedBackwards(int argc, const char* const argv[]);

/// @return the argument as the user wrote it
std::string unmarked(const std::string& argument);

void unmarkAll(std::vector<std::string>& arguments);

/// @return the value of an option that has one, as the user wrote it; nothing if the option was not
///         given
std::optional<std::string> textOf(const CLI::Option& option);

} // namespace connector_config
