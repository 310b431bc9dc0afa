#include "comparing/DiffCommand.hpp"

#include "checking/FileContent.hpp"
#include "commands/Sources.hpp"
#include "comparing/DifferenceText.hpp"
#include "comparing/SnapshotFile.hpp"

#include <connector/service/text/Json.hpp>

#include <filesystem>
#include <stdexcept>

namespace connector_config {

using connector::configuration::ConfigurationImpl;

namespace {

/// Reads the options of a side.
struct SideReader {
    ComparedOptions operator()(const SnapshotOrFile& path) const {
        const std::string text = readFile(path);
        if (isSnapshot(text))
            return optionsOf(parseSnapshot(path, text));
        if (!std::filesystem::is_regular_file(path)) // it cannot be read again
            throw std::runtime_error(path + ": Not a snapshot");
        return (*this)(parseFileArgument(path));
    }

    ComparedOptions operator()(const FileArgument& argument) const {
        ConfigurationImpl configuration;
        replaceSources(configuration, {}); // the file may have the name of a built-in source
        addFile(configuration, openFile(argument));
        return {configuration.optionsBelow(""), {}, false};
    }

    ComparedOptions operator()(const connector::service::HttpClientOptions& service) const {
        return readService(service);
    }

    const ReadService& readService;

private:
    static ComparedOptions optionsOf(const Snapshot& snapshot) {
        ConfigurationImpl configuration;
        replaceSources(configuration, snapshot);
        ComparedOptions result{configuration.optionsBelow(""), {}, true};
        for (const Option& option : result.options) {
            if (isMasked(snapshot, option.source, option.key))
                result.masked.insert(option.key);
        }
        return result;
    }
};

std::string asJson(const Differences& result, const Secrets& secrets) {
    Poco::JSON::Array::Ptr differences = new Poco::JSON::Array;
    for (const Difference& difference : result.differences)
        differences->add(toJson(difference, secrets));
    Poco::JSON::Object::Ptr document = connector::service::makeObject();
    document->set("differences", differences);
    document->set("masked", toJson(result.masked));
    return connector::service::jsonText(document) + '\n';
}

std::string asTable(const Differences& result, const Secrets& secrets, const Terminal& terminal) {
    DifferenceTable table(secrets);
    for (const Difference& difference : result.differences)
        table.add(difference);
    return table.text(terminal);
}

} // namespace

DiffResult diff(const Arguments& arguments, const Terminal& terminal,
                const ReadService& readService) {
    const Secrets secrets(arguments.secrets);
    const SideReader reader{readService};
    const ComparedOptions before = std::visit(reader, arguments.sides.at(0));
    const ComparedOptions after = std::visit(reader, arguments.sides.at(1));
    const Differences result = differencesOf(before, after);
    reportMasked(result.masked);
    return {arguments.json ? asJson(result, secrets) : asTable(result, secrets, terminal),
            result.differences.empty()};
}

} // namespace connector_config
