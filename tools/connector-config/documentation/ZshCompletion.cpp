#include "documentation/Completion.hpp"
#include "documentation/ShellWords.hpp"

#include <algorithm>

namespace connector_config {

namespace {

std::string withEscapes(const std::string& text, const std::string& special) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\' || special.find(c) != std::string::npos)
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

/// @return the name and the completion of a value, as _arguments expects them
std::string valueSpec(const GrammarValue& value) {
    const std::string name = ":" + withEscapes(value.name, ":");
    switch (value.kind) {
    case ValueKind::Nothing:
        return "";
    case ValueKind::File:
        return name + ":_files";
    case ValueKind::Directory:
        return name + ":_files -/";
    case ValueKind::Choice:
        return name + ":(" + joined(value.choices, " ") + ")";
    case ValueKind::Other:
        break;
    }
    return name + ": ";
}

std::string optionSpecs(const GrammarOption& option, const std::string& summary) {
    const std::string others =
        option.value.isRepeatable ? "*" : "(" + joined(option.names, " ") + ")";
    std::string specs;
    for (const std::string& name : option.names) {
        const std::string assigns = option.value.kind == ValueKind::Nothing ? ""
                                    : name.size() == 2                      ? "+"
                                                                            : "=";
        specs += "        " +
                 singleQuoted(others + name + assigns + "[" + withEscapes(summary, "[]") + "]" +
                              valueSpec(option.value)) +
                 "\n";
    }
    return specs;
}

std::string allOptionSpecs(const GrammarCommand& command, const HelpDocument& help) {
    std::string specs;
    for (const GrammarOption& option : command.options)
        specs += optionSpecs(option, summaryOf(help, command.path, option.names.back()));
    return specs;
}

std::string argumentSpecs(const GrammarCommand& command) {
    std::string specs;
    for (const GrammarValue& argument : command.arguments)
        specs += "        " +
                 singleQuoted((argument.isRepeatable ? "*" : "") + valueSpec(argument)) + "\n";
    return specs;
}

std::string functionOf(const GrammarCommand& command) {
    std::string name = "_connector-config" + (command.path.empty() ? "" : "_" + command.path);
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

std::string list(const std::string& name, const std::string& items) {
    return "    local -a " + name + "=(\n" + items + "    )\n";
}

std::string commandNames(const GrammarCommand& command, const HelpDocument& help) {
    std::string names;
    for (const GrammarCommand& below : command.commands)
        names +=
            "        " +
            singleQuoted(withEscapes(lastWord(below), ":") + ":" + summaryOf(help, below.path)) +
            "\n";
    return names;
}

/// The first word selects a command; its function completes the rest.
std::string selection(const GrammarCommand& command) {
    std::string branches;
    for (const GrammarCommand& below : command.commands)
        branches += "        " + lastWord(below) + ") " + functionOf(below) + " && result=0 ;;\n";
    return R"(    integer result=1
    _arguments -S -C $connector_config_options $specs \
        '1:command:->command' '*::argument:->argument' && result=0
    case $state in
    command) _describe -t commands command commands && result=0 ;;
    argument)
        curcontext="${curcontext%:*:*}:connector-config-$line[1]:"
        case $line[1] in
)" + branches +
           R"(        esac
        ;;
    esac
    return result
)";
}

/// @param shared  whether its options are those of all commands below it, too
std::string function(const GrammarCommand& command, const HelpDocument& help, bool shared) {
    const std::string options = allOptionSpecs(command, help);
    std::string body = shared ? list("connector_config_options", options) + list("specs", "")
                              : list("specs", options + argumentSpecs(command));
    if (command.commands.empty())
        body += "    _arguments -S $specs $connector_config_options\n";
    else
        body = "    local curcontext=$curcontext state line\n    typeset -A opt_args\n" + body +
               list("commands", commandNames(command, help)) + selection(command);
    return functionOf(command) + "() {\n" + body + "}\n\n";
}

} // namespace

std::string zshCompletion(const GrammarCommand& program, const HelpDocument& help) {
    std::string script = "#compdef connector-config\n"
                         "# Completion of connector-config for zsh. Generated: "
                         "connector-config completion zsh\n\n";
    for (const GrammarCommand* const command : allCommands(program))
        script += function(*command, help, command == &program);
    return script + "_connector-config \"$@\"\n";
}

} // namespace connector_config
