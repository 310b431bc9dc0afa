#include "commands/Sources.hpp"

#include <connector/service/text/LoadingGroup.hpp>
#include <connector/service/text/Utf8.hpp>

#include <fl/i18n/codecvt.hpp>

#include <stdexcept>

namespace connector_config {

using connector::configuration::Configuration;

namespace {

struct Adder {
    Configuration& configuration;

    void operator()(const FileArgument& file) const { addFile(configuration, file); }
    void operator()(const TableAssignment& argument) const {
        const Assignment& assignment = argument.assignment;
        configuration.set(assignment.key, assignment.value, argument.table).get();
    }
};

} // namespace

void addFile(Configuration& configuration, const FileArgument& file) {
    if (!connector::service::isUtf8(file.path))
        throw std::runtime_error("Path is not valid UTF-8: " + file.path);
    const fl::i18n::codecvt_string_to_ustring fromUtf8("UTF-8", true);
    const bool readOnly = true;
    const connector::service::LoadingGroup loading(file.group);
    configuration
        .addPropertyFileSource(file.name, file.group, file.order, readOnly,
                               fl::i18n::to_ustring(file.path, fromUtf8))
        .get();
}

void addSources(Configuration& configuration, const std::vector<SourceArgument>& sources) {
    for (const SourceArgument& source : sources)
        std::visit(Adder{configuration}, source);
}

} // namespace connector_config
