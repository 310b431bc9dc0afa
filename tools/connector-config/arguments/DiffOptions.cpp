#include "arguments/DiffOptions.hpp"

#include "arguments/LiteralArguments.hpp"
#include "values/WrongArguments.hpp"

#include <CLI/CLI.hpp>

namespace connector_config {

namespace {

/// The long form is always a file of options, so a file can be compared whatever it contains.
DiffSide fileSide(const std::string& text) {
    if (text.compare(0, 5, "path=") == 0)
        return parseFileArgument(text);
    return SnapshotOrFile(text);
}

bool isStandardInput(const DiffSide& side) {
    const auto* const path = std::get_if<SnapshotOrFile>(&side);
    return path != nullptr && *path == "-";
}

} // namespace

std::vector<connector::service::HttpClientOptions> servicesOf(const std::vector<DiffSide>& sides) {
    std::vector<connector::service::HttpClientOptions> services;
    for (const DiffSide& side : sides) {
        if (const auto* const service = std::get_if<connector::service::HttpClientOptions>(&side))
            services.push_back(*service);
    }
    return services;
}

void DiffOptions::declare(CLI::App& newCommand) {
    command = &newCommand;
    newCommand.add_option("FILE", files);
    url = newCommand.add_option("--url", urls)->type_name("URL")->allow_extra_args(false);
}

std::vector<DiffSide> DiffOptions::collect(const ServiceOptions& services) const {
    std::vector<DiffSide> sides;
    if (const auto urlInFront = services.url())
        sides.emplace_back(services.serviceAt(*urlInFront));
    auto nextFile = files.begin();
    auto nextUrl = urls.begin();
    for (const CLI::Option* const option : command->parse_order()) {
        if (option == url)
            sides.emplace_back(services.serviceAt(unmarked(*nextUrl++)));
        else
            sides.push_back(fileSide(unmarked(*nextFile++)));
    }
    if (sides.size() != 2)
        throw WrongArguments("diff requires two sides, each a FILE or --url URL");
    if (isStandardInput(sides[0]) && isStandardInput(sides[1]))
        throw WrongArguments("Standard input can be read only once");
    return sides;
}

} // namespace connector_config
