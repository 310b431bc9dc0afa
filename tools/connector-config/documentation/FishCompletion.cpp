#include "documentation/Completion.hpp"
#include "documentation/ShellWords.hpp"

namespace connector_config {

namespace {

/// In single quotes, where fish reads "\\" and "\'" only.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        if (c == '\\' || c == '\'')
            result += '\\';
        result += c;
    }
    return result + "'";
}

std::string described(const std::string& summary) {
    return summary.empty() ? "" : " -d " + quoted(summary);
}

/// @return the condition that the words so far select this command; none for the program, whose
///     options may follow any command
std::string condition(const GrammarCommand& command) {
    if (command.path.empty())
        return "";
    return " -n " + quoted("__connector_config_at " + quoted(command.path));
}

std::string valueFlags(const GrammarValue& value) {
    switch (value.kind) {
    case ValueKind::Nothing:
        return "";
    case ValueKind::File:
    case ValueKind::Directory: // fish completes paths
        return " -r -F";
    case ValueKind::Choice:
        return " -x -a " + quoted(joined(value.choices, " "));
    case ValueKind::Other:
        break;
    }
    return " -x";
}

std::string optionLine(const GrammarCommand& command, const GrammarOption& option,
                       const std::string& summary) {
    std::string line = "complete -c connector-config" + condition(command);
    for (const std::string& name : option.names)
        line += name.size() == 2 ? " -s " + name.substr(1) : " -l " + name.substr(2);
    return line + valueFlags(option.value) + described(summary) + "\n";
}

std::string commandLines(const GrammarCommand& command, const HelpDocument& help) {
    std::string lines;
    for (const GrammarOption& option : command.options)
        lines += optionLine(command, option, summaryOf(help, command.path, option.names.back()));
    for (const GrammarCommand& below : command.commands)
        lines += "complete -c connector-config -n " +
                 quoted("__connector_config_at " + quoted(command.path)) + " -a " +
                 lastWord(below) + described(summaryOf(help, below.path)) + "\n";
    for (const GrammarValue& argument : command.arguments) {
        if (argument.kind == ValueKind::File)
            lines += "complete -c connector-config" + condition(command) + " -F\n";
        if (argument.kind == ValueKind::Choice)
            lines += "complete -c connector-config" + condition(command) + " -a " +
                     quoted(joined(argument.choices, " ")) + "\n";
    }
    return lines;
}

/// The commands of a command, and its options whose value is the next word.
std::string branches(const GrammarCommand& program) {
    std::string result;
    for (const GrammarCommand* const command : allCommands(program)) {
        for (const GrammarCommand& below : command->commands)
            result += "            case " + quoted(command->path + ":" + lastWord(below)) +
                      "\n                set command " + quoted(below.path) + "\n";
        for (const GrammarOption& option : command->options) {
            if (option.value.kind == ValueKind::Nothing)
                continue;
            result += "            case";
            for (const std::string& name : option.names)
                result += " " + quoted((command->path.empty() ? "*" : command->path) + ":" + name);
            result += "\n                set skip yes\n";
        }
    }
    return result;
}

const char head[] =
    R"(# Completion of connector-config for fish. Generated: connector-config completion fish

function __connector_config_at -d 'Whether the words before the cursor select this command'
    set -l command ''
    set -l skip
    for word in (commandline -opc)[2..]
        if test -n "$skip"
            set skip
            continue
        end
        switch "$command:$word"
)";

const char tail[] = R"(        end
    end
    test "$command" = "$argv[1]"
end

complete -c connector-config -f
)";

} // namespace

std::string fishCompletion(const GrammarCommand& program, const HelpDocument& help) {
    std::string script = head + branches(program) + tail;
    for (const GrammarCommand* const command : allCommands(program))
        script += commandLines(*command, help);
    return script;
}

} // namespace connector_config
