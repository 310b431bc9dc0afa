/// The sources of the library follow the rules for all sources.
#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/sources/InMemorySource.hpp>
#include <connector/configuration/sources/PropertyFileSource.hpp>
#include <connector/sources/EnvironmentSource.hpp>
#include <connector/sources/FileSource.hpp>
#include <connector/sources/TableSource.hpp>
#include <connector/testing/SourceConformance.hpp>

#include <cstdlib>
#include <map>

namespace test {

namespace {

using connector::configuration::ConfigurationSource;
using connector::configuration::InMemorySource;
using connector::configuration::OptionValue;
using connector::configuration::PropertyFileSource;
using connector::sources::EnvironmentSource;
using connector::sources::FileFormat;
using connector::sources::FileSource;
using connector::sources::TableSource;
using connector::testing::SourceFactory;

using Table = SourceFactory::Table;

SourceFactory inMemorySources() {
    return {[](Table table) { return std::make_shared<InMemorySource>(std::move(table)); }, nullptr,
            true};
}

std::string propertiesOf(const Table& table) {
    std::string text;
    for (const auto& [key, value] : table)
        text += key + "=" + boost::get<std::string>(value) + "\n";
    return text;
}

SourceFactory propertyFileSources() {
    return {[](const Table& table) {
                const TemporaryDirectory directory;
                return std::make_shared<PropertyFileSource>(
                    directory.write("a.properties", propertiesOf(table)).u16string());
            },
            nullptr, false};
}

/// @return the table with one option changed
Table changed(const Table& before, const std::string& key,
              const std::optional<OptionValue>& value) {
    Table table = before;
    table.erase(key);
    if (value)
        table.emplace(key, *value);
    return table;
}

SourceFactory tableSources() {
    return {[](Table table) { return std::make_shared<TableSource>(std::move(table)); },
            [](ConfigurationSource& source, const std::string& key,
               const std::optional<OptionValue>& value) {
                auto& table = dynamic_cast<TableSource&>(source);
                table.replace(changed(*table.table(), key, value));
            },
            false};
}

/// A FileSource and the directory of its file.
class OwnFile : private TemporaryDirectory, public FileSource {
public:
    explicit OwnFile(const Table& table)
        : FileSource(TemporaryDirectory::write("a.json", jsonOf(table)), FileFormat::Json) {}

    void change(const std::string& key, const std::optional<OptionValue>& value) {
        const auto beside =
            TemporaryDirectory::write("b.json", jsonOf(changed(*table(), key, value)));
        std::filesystem::rename(beside, FileSource::path());
        reload();
    }

private:
    static std::string jsonOf(const Table& table) {
        std::string text;
        for (const auto& [key, value] : table)
            text += (text.empty() ? "\"" : ",\"") + key + "\":\"" + boost::get<std::string>(value) +
                    '"';
        return '{' + text + '}';
    }
};

SourceFactory fileSources() {
    return {[](const Table& table) { return std::make_shared<OwnFile>(table); },
            [](ConfigurationSource& source, const std::string& key,
               const std::optional<OptionValue>& value) {
                dynamic_cast<OwnFile&>(source).change(key, value);
            },
            false};
}

SourceFactory environmentSources() {
    return {[](const Table& table) {
                std::map<std::string, std::string> keys;
                for (const auto& [key, value] : table) {
                    const std::string name = "TEST_CONFORMANCE_" + std::to_string(keys.size());
                    setenv(name.c_str(), boost::get<std::string>(value).c_str(), 1);
                    keys.emplace(name, key);
                }
                return std::make_shared<EnvironmentSource>(keys);
            },
            nullptr, false};
}

} // namespace

CONNECTOR_SOURCE_CONFORMANCE(InMemorySourceConformance, inMemorySources());
CONNECTOR_SOURCE_CONFORMANCE(PropertyFileSourceConformance, propertyFileSources());
CONNECTOR_SOURCE_CONFORMANCE(TableSourceConformance, tableSources());
CONNECTOR_SOURCE_CONFORMANCE(FileSourceConformance, fileSources());
CONNECTOR_SOURCE_CONFORMANCE(EnvironmentSourceConformance, environmentSources());

} // namespace test
