/// The grammar of the command line, as the parser has it.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace connector_config {

/// What an argument stands for, and so how a shell completes it.
enum class ValueKind { Nothing, File, Directory, Choice, Other };

struct GrammarValue {
    std::string name;                    ///< as in the help text, for example "FILE"
    ValueKind kind = ValueKind::Nothing; ///< of an option: Nothing if it takes no value
    std::vector<std::string> choices;    ///< of Choice
    bool isRepeatable = false;           ///< of an option: whether it may be given again
};

struct GrammarOption {
    std::vector<std::string> names; ///< with their dashes, short ones first
    GrammarValue value;
};

struct GrammarCommand {
    std::string path; ///< the words that select it, with spaces; empty for the program itself
    std::vector<GrammarOption> options;
    std::vector<GrammarValue> arguments; ///< in their order; only the last may be repeatable
    std::vector<GrammarCommand> commands;
};

/// @return the program with its options, commands and their options, in the order of declaration
GrammarCommand grammarOf(const CLI::App& app);

/// @return the command and all below it, each before those below it
std::vector<const GrammarCommand*> allCommands(const GrammarCommand& command);

/// @return the last word of its path
std::string lastWord(const GrammarCommand& command);

} // namespace connector_config
