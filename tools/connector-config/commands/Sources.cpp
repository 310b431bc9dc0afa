#include "commands/Sources.hpp"

#include "display/Output.hpp"

#include <connector/sources/EnvironmentSource.hpp>

namespace connector_config {

using connector::configuration::ConfigurationImpl;
using connector::sources::EnvironmentSource;

namespace {

constexpr bool readOnly = true;

struct Adder {
    ConfigurationImpl& configuration;
    NamedFiles& files;
    const AddEtcd& addEtcd;

    void operator()(const FileArgument& argument) const {
        files.push_back(openFile(argument));
        addFile(configuration, files.back());
    }
    void operator()(const EnvironmentArgument& environment) const {
        configuration
            .addSource(environment.name, environment.group, environment.order, readOnly,
                       std::make_shared<EnvironmentSource>(environment.prefix))
            .get();
    }
    void operator()(const EtcdArgument& etcd) const { addEtcd(configuration, etcd); }
    void operator()(const TableAssignment& argument) const {
        const Assignment& assignment = argument.assignment;
        warnOfUnknownType(assignment);
        configuration.set(assignment.key, assignment.value, argument.table).get();
    }
};

} // namespace

void addFile(ConfigurationImpl& configuration, const std::shared_ptr<NamedFile>& file) {
    const FileArgument& argument = file->argument();
    configuration.addSource(argument.name, argument.group, argument.order, readOnly, file).get();
}

NamedFiles addSources(ConfigurationImpl& configuration, const std::vector<SourceArgument>& sources,
                      const AddEtcd& addEtcd) {
    NamedFiles files;
    for (const SourceArgument& source : sources)
        std::visit(Adder{configuration, files, addEtcd}, source);
    return files;
}

void warnOfUnknownType(const Assignment& assignment) {
    if (assignment.hasUnknownType)
        printError("Warning: unknown type, taken as part of the key: " + assignment.key);
}

} // namespace connector_config
