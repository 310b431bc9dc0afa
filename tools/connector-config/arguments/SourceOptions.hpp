/// The grammar of sources.
#pragma once

#include "arguments/SourceArgument.hpp"

#include <connector/service/text/Secrets.hpp>

#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace connector_config {

/// Declares the options that add sources to CLI11, which fills this object.
class SourceOptions {
public:
    /// @param newApp  the program, which must outlive this object
    void declare(CLI::App& newApp);

    /// @param secrets  keys whose values are masked in failures
    /// @return the sources in the order of the arguments, also if their options differ
    /// @throws WrongArguments
    std::vector<SourceArgument> collect(const connector::service::Secrets& secrets) const;

    /// @param by       the option or command that excludes sources
    /// @param allowed  an option that may be given; null for none
    /// @throws WrongArguments "BY excludes OPTION"
    void forbid(const std::string& by, const CLI::Option* allowed = nullptr) const;

    const CLI::Option& files() const { return *fileOption; }
    const CLI::Option& etcds() const { return *etcdOption; }

private:
    SourceArgument sourceOf(const CLI::Option* option, const std::string& text,
                            const connector::service::Secrets& secrets) const;

    const CLI::App* app = nullptr;
    std::map<std::string, std::vector<std::string>> texts;
    std::vector<const CLI::Option*> options;
    const CLI::Option* fileOption = nullptr;
    const CLI::Option* environmentOption = nullptr;
    const CLI::Option* etcdOption = nullptr;
    const CLI::Option* overrideOption = nullptr;
};

} // namespace connector_config
