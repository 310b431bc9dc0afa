#include "comparing/FileRereading.hpp"

#include <connector/service/text/LoadingGroup.hpp>

#include <algorithm>
#include <stdexcept>

namespace connector_config {

namespace {

/// @param hasOptions  whether the source has options now. A file that may be missing is missed all
///                    the same then.
void addTable(RereadFiles& result, FileArgument file, bool hasOptions) {
    file.optional = file.optional && !hasOptions;
    const connector::service::LoadingGroup loading(file.group);
    try {
        result.tables.tables[file.name] = *NamedFile(file).table();
    } catch (const std::exception& failure) {
        result.failures.emplace_back(failure.what());
    }
}

} // namespace

RereadFiles reread(const NamedFiles& files) {
    RereadFiles result;
    for (const std::shared_ptr<NamedFile>& file : files) {
        if (file->canBeReloaded())
            addTable(result, file->argument(), !file->table()->empty());
    }
    return result;
}

RereadFiles reread(const std::vector<FileArgument>& files, const Snapshot& snapshot) {
    RereadFiles result;
    for (const FileArgument& file : files) {
        const auto source = std::find_if(snapshot.begin(), snapshot.end(),
                                         [&](const auto& one) { return one.name == file.name; });
        if (source == snapshot.end())
            throw std::runtime_error("No source with that name: " + file.name);
        addTable(result, file, !source->entries.empty());
    }
    return result;
}

} // namespace connector_config
