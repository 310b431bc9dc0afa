/// Options of a schema on the command line. The only header of the library that includes CLI11;
/// callers that include it must have CLI11 installed.
#pragma once

#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/typed/OptionSchema.hpp>
#include <connector/configuration/typed/detail/OptionFollower.hpp>

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace connector::configuration {

namespace detail {

/// The texts that were given, until parsing ends.
struct GivenOptions {
    struct Given {
        CLI::Option* option;
        std::string key;
        std::string text;
    };
    std::vector<Given> all;

    void writeTo(Configuration& configuration) const {
        for (const Given& given : all) {
            if (given.option->count() != 0)
                configuration.set(given.key, OptionValue(given.text), "override").get();
        }
    }
};

} // namespace detail

/// Gives an application each option of a schema as `--KEY VALUE`, with its description and default
/// in the help. A value is converted and checked while it is parsed; an error is reported as
/// CLI11's own CLI::ValidationError. When everything is parsed, all values that were given are
/// written to "override", as text; if there is any error, none is written.
///
/// The application keeps a copy of the schema, and keeps the configuration alive.
/// @throws std::invalid_argument "A null configuration cannot be followed."
/// @throws CLI::BadNameString for a key that CLI11 does not accept as a name
template <typename Settings>
void addOptions(CLI::App& application, const OptionSchema<Settings>& schema,
                const std::shared_ptr<Configuration>& configuration) {
    static_cast<void>(detail::demand(configuration));
    const auto declared = std::make_shared<const OptionSchema<Settings>>(schema);
    const auto given = std::make_shared<detail::GivenOptions>();
    given->all.reserve(declared->core().options().size()); // CLI11 keeps references to the texts
    // In a group of its own, so that the application's callbacks are not replaced.
    CLI::App* const group = application.add_option_group("Configuration");
    Settings defaults{};
    for (const detail::DeclaredOption& option : declared->core().options()) {
        given->all.push_back({nullptr, option.key, {}});
        CLI::Option* const added =
            group->add_option("--" + option.key, given->all.back().text, option.description);
        given->all.back().option = added;
        added->default_str(detail::helpDefault(option, &defaults));
        added->type_name(option.type->name());
        added->check([declared, &option](const std::string& text) {
            Settings settings{};
            return declared->core().readOne(option, OptionValue(text), &settings);
        });
    }
    group->final_callback([given, configuration] { given->writeTo(*configuration); });
}

} // namespace connector::configuration
