#include "arguments/FleetOptions.hpp"

#include "arguments/EtcdArgument.hpp"
#include "arguments/LiteralArguments.hpp"
#include "values/WrongArguments.hpp"

#include <CLI/CLI.hpp>

namespace connector_config {

namespace {

using Action = FleetArguments::Action;
using Format = FleetArguments::Format;

/// More operations are more than one transaction.
constexpr std::size_t mostOperations = 128;

void checkNumber(std::size_t operations) {
    if (operations > mostOperations)
        throw WrongArguments("A transaction has at most 128 operations, not " +
                             std::to_string(operations));
}

std::vector<Assignment> assignmentsOf(const std::vector<std::string>& texts,
                                      const Secrets& secrets) {
    std::vector<Assignment> assignments;
    std::set<std::string> keys;
    for (const std::string& text : texts) {
        assignments.push_back(parseAssignment(unmarked(text), secrets));
        if (!keys.insert(assignments.back().key).second)
            throw WrongArguments("Key is put twice: " + assignments.back().key);
    }
    checkNumber(assignments.size());
    return assignments;
}

std::set<std::string> keysOf(const std::vector<std::string>& texts) {
    std::set<std::string> keys;
    for (const std::string& text : texts)
        keys.insert(unmarked(text));
    if (keys.count("") > 0)
        throw WrongArguments("Key is empty");
    checkNumber(keys.size());
    return keys;
}

Format formatOf(const std::string& name) {
    if (name != "json" && name != "properties")
        throw WrongArguments("Format is neither json nor properties: " + name);
    return name == "json" ? Format::Json : Format::Properties;
}

} // namespace

void FleetOptions::declare(CLI::App& command) {
    fleet = &command;
    if (!hasEtcd) {
        command.allow_extras()->fallthrough(false); // whatever it is, it is invalid
        return;
    }
    add("put", Action::Put)->add_option("KEY[:TYPE]=VALUE", assignments)->required();
    add("delete", Action::Delete)->add_option("KEY", keys)->required();
    CLI::App* const import = add("import", Action::Import);
    import->add_option("FILE", file)->required();
    import->add_flag("--delete", deletes)->disable_flag_override();
    import->add_flag("--dry-run", isDryRun)->disable_flag_override();
    add("export", Action::Export)->add_option("--format", format)->type_name("FORMAT");
    add("status", Action::Status);
}

CLI::App* FleetOptions::add(const char* name, Action action) {
    CLI::App* const subcommand = fleet->add_subcommand(name);
    subcommand->set_help_flag(); // --help after a command is the program's own option
    actions[subcommand] = action;
    return subcommand;
}

FleetArguments FleetOptions::collect(const Secrets& secrets) const {
    if (!hasEtcd)
        throw WrongArguments("This program was built without etcd: fleet");
    const std::vector<CLI::App*> chosen = fleet->get_subcommands();
    if (chosen.empty())
        throw WrongArguments("fleet requires put, delete, import, export or status");
    FleetArguments arguments;
    arguments.action = actions.at(chosen.front());
    arguments.assignments = assignmentsOf(assignments, secrets);
    arguments.keys = keysOf(keys);
    if (arguments.action == Action::Import)
        arguments.file = parseImportedFile(unmarked(file));
    arguments.deletes = deletes;
    arguments.isDryRun = isDryRun;
    arguments.format = formatOf(unmarked(format));
    return arguments;
}

} // namespace connector_config
