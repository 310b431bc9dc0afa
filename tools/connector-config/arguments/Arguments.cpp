#include "arguments/Arguments.hpp"

#include "arguments/CheckOptions.hpp"
#include "arguments/CommandLine.hpp"
#include "arguments/FleetOptions.hpp"
#include "arguments/Help.hpp"
#include "arguments/LiteralArguments.hpp"
#include "arguments/ServeOptions.hpp"
#include "arguments/ServiceOptions.hpp"
#include "arguments/SourceOptions.hpp"
#include "documentation/DocumentationCommands.hpp"
#include "values/WrongArguments.hpp"

#include <CLI/CLI.hpp>

namespace connector_config {

namespace {

/// Declares the grammar of the command line to CLI11 and collects the results.
class Parser {
public:
    Parser() {
        app.set_help_flag("-h,--help");
        app.set_version_flag("--version", versionText());
        app.add_flag("--json", arguments.json)->disable_flag_override();
        app.add_flag("--trace", arguments.trace)->disable_flag_override();
        sourceOptions.declare(app);
        app.add_option("--secret", arguments.secrets)->type_name("GLOB")->allow_extra_args(false);
        serviceOptions.declare(app);

        addGet();
        commandLine.add("keys", Command::Keys).add_option("PREFIX", arguments.prefix);
        commandLine.add("show", Command::Show).add_option("PREFIX", arguments.prefix);
        commandLine.add("explain", Command::Explain).add_option("KEY", arguments.key)->required();
        addWatch();
        commandLine.add("set", Command::Set).add_option("KEY[:TYPE]=VALUE", assignment)->required();
        addServe();
        checkOptions.declare(commandLine.add("check", Command::Check));
        fleetOptions.declare(commandLine.add("fleet", Command::Fleet));
        addComparing();
        documentation.declare(app);
    }

    Arguments parse(int argc, const char* const argv[]) {
        try {
            commandLine.parse(argc, argv);
        } catch (const CLI::CallForHelp&) {
            return informationOnly(helpText());
        } catch (const CLI::CallForVersion&) {
            return informationOnly(versionText());
        }
        if (const auto text = documentation.output(helpText(), versionText()))
            return informationOnly(*text);
        arguments.command = commandLine.command();
        unmarkAll(arguments.secrets);
        arguments.sources = sourceOptions.collect(Secrets(arguments.secrets));
        arguments.key = unmarked(arguments.key);
        arguments.prefix = unmarked(arguments.prefix);
        unmarkAll(arguments.keys);
        unmarkAll(plannedWords);
        if (arguments.forShell && arguments.json)
            throw WrongArguments("--export excludes --json");
        arguments.http = serveOptions.collect();
        if (arguments.command == Command::Check)
            collectCheck();
        if (arguments.command == Command::Fleet)
            collectFleet();
        collectSnapshot();
        collectComparing();
        collectService();
        return std::move(arguments);
    }

private:
    using Words = std::vector<std::string>;

    static Arguments informationOnly(std::string text) {
        Arguments information;
        information.information = std::move(text);
        return information;
    }

    void addGet() {
        CLI::App& get = commandLine.add("get", Command::Get);
        get.add_option("KEY", arguments.keys)->required();
        get.add_flag("--export", arguments.forShell)->disable_flag_override();
    }

    void addWatch() {
        CLI::App& watch = commandLine.add("watch", Command::Watch);
        watch.add_option("KEY", arguments.keys)->required();
        addReload(watch);
    }

    void addReload(CLI::App& command) {
        command.add_flag("--reload", arguments.followsFiles)->disable_flag_override();
    }

    void addServe() {
        CLI::App& serve = commandLine.add("serve", Command::Serve);
        addReload(serve);
        serveOptions.declare(serve);
    }

    void addComparing() {
        snapshot = app.add_option("--snapshot", snapshotFile)->type_name("FILE");
        commandLine.add("snapshot", Command::Snapshot)
            .add_flag("--with-secrets", arguments.withSecrets)
            ->disable_flag_override();
        diffOptions.declare(commandLine.add("diff", Command::Diff));
        commandLine.add("plan", Command::Plan).add_option("CHANGE", plannedWords);
    }

    void collectCheck() {
        forbidSources("check");
        arguments.check = checkOptions.collect(arguments.json);
    }

    /// Sources of other kinds would play no part.
    void collectFleet() {
        arguments.fleet = fleetOptions.collect(Secrets(arguments.secrets));
        if (arguments.json && arguments.fleet.format == FleetArguments::Format::Properties)
            throw WrongArguments("--json excludes --format=properties");
        sourceOptions.forbid("fleet", &sourceOptions.etcds());
        if (sourceOptions.etcds().count() != 1)
            throw WrongArguments("fleet requires exactly one --etcd");
    }

    /// A command on a service has no sources, and set has nothing else.
    void collectService() {
        if (arguments.command == Command::Set)
            arguments.assignment =
                parseAssignment(unmarked(assignment), Secrets(arguments.secrets));
        std::vector<connector::service::HttpClientOptions> services = servicesOf(arguments.sides);
        const auto url = serviceOptions.url();
        if (url && arguments.command != Command::Diff) {
            checkNothingIsLocal();
            arguments.service = serviceOptions.serviceAt(*url);
            services.push_back(*arguments.service);
        }
        serviceOptions.check(services);
        if (arguments.command == Command::Set && !url)
            throw WrongArguments("set requires --url");
    }

    void collectComparing() {
        if (arguments.command == Command::Plan)
            arguments.plannedChange = parsePlannedChange(plannedWords, Secrets(arguments.secrets));
        if (arguments.command != Command::Diff)
            return;
        forbidSources("diff");
        arguments.sides = diffOptions.collect(serviceOptions);
    }

    /// The sources of a snapshot are taken in place of others. Only plan reload has files beside
    /// them.
    void collectSnapshot() {
        const bool isPlannedReload =
            arguments.command == Command::Plan && plannedWords == Words{"reload"};
        if (isPlannedReload && sourceOptions.files().count() == 0)
            throw WrongArguments("plan reload requires --file");
        arguments.snapshot = textOf(*snapshot);
        if (!arguments.snapshot)
            return;
        sourceOptions.forbid("--snapshot", isPlannedReload ? &sourceOptions.files() : nullptr);
        if (arguments.followsFiles)
            throw WrongArguments("--snapshot excludes --reload");
        if (serviceOptions.url())
            throw WrongArguments("--url excludes --snapshot");
        const bool readsInput = arguments.command == Command::Watch ||
                                (arguments.command == Command::Serve && !arguments.http);
        if (*arguments.snapshot == "-" && readsInput)
            throw WrongArguments("Standard input can be read only once");
    }

    /// @param by  a command for which sources would play no part
    void forbidSources(const std::string& by) const {
        sourceOptions.forbid(by);
        if (snapshot->count() > 0)
            throw WrongArguments(by + " excludes --snapshot");
    }

    void checkNothingIsLocal() const {
        sourceOptions.forbid("--url");
        if (arguments.followsFiles)
            throw WrongArguments("--url excludes --reload");
        for (const auto& [command, name] :
             {std::pair(Command::Serve, "serve"), std::pair(Command::Check, "check"),
              std::pair(Command::Snapshot, "snapshot"), std::pair(Command::Plan, "plan")}) {
            if (arguments.command == command)
                throw WrongArguments("--url excludes " + std::string(name));
        }
    }

    CLI::App app{"", "connector-config"};
    Arguments arguments;
    CommandLine commandLine{app};
    std::string assignment;
    SourceOptions sourceOptions;
    ServeOptions serveOptions;
    ServiceOptions serviceOptions;
    CheckOptions checkOptions;
    FleetOptions fleetOptions;
    DiffOptions diffOptions;
    std::string snapshotFile;
    const CLI::Option* snapshot = nullptr;
    Words plannedWords;
    DocumentationCommands documentation;
};

} // namespace

Arguments parseArguments(int argc, const char* const argv[]) {
    return Parser().parse(argc, argv);
}

} // namespace connector_config
