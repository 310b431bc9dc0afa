#include "documentation/Completion.hpp"
#include "documentation/ShellWords.hpp"

namespace connector_config {

namespace {

/// @return what the script notes for the next word: a kind of value, or the words to choose from
std::string expectation(const GrammarValue& value) {
    switch (value.kind) {
    case ValueKind::File:
        return "file";
    case ValueKind::Directory:
        return "directory";
    case ValueKind::Choice:
        return "words " + joined(value.choices, " ");
    case ValueKind::Nothing:
    case ValueKind::Other:
        break;
    }
    return "other";
}

std::string branch(const std::string& pattern, const std::string& action) {
    return "        " + pattern + ") " + action + " ;;\n";
}

/// The commands of a command, and its options that take a value. The options of the program come
/// last, since a command may have an option of the same name.
std::string words(const GrammarCommand& command) {
    std::string branches;
    for (const GrammarCommand& below : command.commands)
        branches += branch(singleQuoted(command.path + ":" + lastWord(below)),
                           "command=" + singleQuoted(below.path));
    for (const GrammarOption& option : command.options) {
        if (option.value.kind == ValueKind::Nothing)
            continue;
        std::vector<std::string> patterns;
        for (const std::string& name : option.names)
            patterns.push_back(command.path.empty() ? "*:" + name
                                                    : singleQuoted(command.path + ":" + name));
        branches +=
            branch(joined(patterns, "|"), "expected=" + singleQuoted(expectation(option.value)));
    }
    return branches;
}

std::string allWords(const GrammarCommand& program) {
    std::string branches;
    for (const GrammarCommand* const command : allCommands(program))
        branches = words(*command) + branches;
    return branches;
}

std::vector<std::string> optionNames(const GrammarCommand& command) {
    std::vector<std::string> names;
    for (const GrammarOption& option : command.options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

/// What follows each command: options, commands below it, and the kind of its last argument.
std::string offers(const GrammarCommand& program) {
    std::string branches;
    for (const GrammarCommand* const command : allCommands(program)) {
        std::vector<std::string> below;
        for (const GrammarCommand& one : command->commands)
            below.push_back(lastWord(one));
        std::string argument = "other";
        if (!command->arguments.empty())
            argument = expectation(command->arguments.back());
        if (!below.empty())
            argument = "words " + joined(below, " ");
        const std::vector<std::string> options =
            command->path.empty() ? std::vector<std::string>{} : optionNames(*command);
        branches +=
            branch(singleQuoted(command->path), "options=" + singleQuoted(joined(options, " ")) +
                                                    " argument=" + singleQuoted(argument));
    }
    return branches;
}

// Bash splits words at ":" and "=", so the parts after these are no words of their own.
const char head[] =
    R"(# Completion of connector-config for bash. Generated: connector-config completion bash

_connector_config() {
    local current=${COMP_WORDS[COMP_CWORD]} command='' expected='' argument='' options='' glued='' word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        if [[ $word == [:=]* ]]; then
            glued=yes
            continue
        elif [[ -n $glued || -n $expected ]]; then
            glued='' expected=''
            continue
        fi
        case $command:$word in
)";

const char middle[] = R"(        esac
    done
    [[ $current == [:=]* ]] && current=${current#?}
    case $command in
)";

const char tail[] = R"(
    if [[ -z $expected ]]; then
        expected=$argument
        [[ $current == -* ]] && expected="words $options $everywhere"
    fi
    case $expected in
        file)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            ;;
        directory)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            ;;
        words*) mapfile -t COMPREPLY < <(compgen -W "${expected#words}" -- "$current") ;;
        *) COMPREPLY=() ;;
    esac
}

complete -F _connector_config connector-config
)";

} // namespace

std::string bashCompletion(const GrammarCommand& program) {
    return head + allWords(program) + middle + offers(program) +
           "    esac\n    local everywhere=" + singleQuoted(joined(optionNames(program), " ")) +
           tail;
}

} // namespace connector_config
