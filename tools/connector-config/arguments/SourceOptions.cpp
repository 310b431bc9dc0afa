#include "arguments/SourceOptions.hpp"

#include "arguments/LiteralArguments.hpp"
#include "values/WrongArguments.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace connector_config {

void SourceOptions::declare(CLI::App& newApp) {
    app = &newApp;
    const auto add = [&](const char* names, const char* type) {
        CLI::Option* const option = newApp.add_option(names, texts[names]);
        options.push_back(option->type_name(type)->allow_extra_args(false));
        return options.back();
    };
    fileOption = add("-f,--file", "FILE");
    environmentOption = add("--env", "PREFIX");
    etcdOption = add("--etcd", "endpoint=URL,prefix=P");
    overrideOption = add("-s,--set", "KEY[:TYPE]=VALUE");
    add("-d,--default", "KEY[:TYPE]=VALUE");
}

std::vector<SourceArgument> SourceOptions::collect(const Secrets& secrets) const {
    std::vector<SourceArgument> sources;
    std::map<const CLI::Option*, std::size_t> seen;
    for (const CLI::Option* const option : app->parse_order()) {
        if (std::find(options.begin(), options.end(), option) == options.end())
            continue;
        const std::string& text = option->results()[seen[option]++];
        sources.push_back(sourceOf(option, unmarked(text), secrets));
    }
    return sources;
}

void SourceOptions::forbid(const std::string& by, const CLI::Option* allowed) const {
    for (const CLI::Option* const option : options) {
        if (option != allowed && option->count() > 0)
            throw WrongArguments(by + " excludes " + option->get_name());
    }
}

SourceArgument SourceOptions::sourceOf(const CLI::Option* option, const std::string& text,
                                       const Secrets& secrets) const {
    if (option == fileOption)
        return parseFileArgument(text);
    if (option == environmentOption)
        return parseEnvironmentArgument(text);
    if (option == etcdOption)
        return parseEtcdArgument(text);
    return TableAssignment{parseAssignment(text, secrets),
                           option == overrideOption ? "override" : "default"};
}

} // namespace connector_config
