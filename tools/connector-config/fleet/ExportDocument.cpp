#include "fleet/ExportDocument.hpp"

#include <connector/service/text/Json.hpp>
#include <connector/service/text/JsonReader.hpp>
#include <connector/service/text/Utf8.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>
#include <connector/etcd/Values.hpp>

#include <stdexcept>

namespace connector_config {

using connector::configuration::fromOptionValue;
using connector::configuration::OptionValue;
using connector::service::JsonContainer;
using connector::service::JsonHandler;
using connector::service::JsonScalar;
using connector::service::jsonText;

namespace {

/// Finds the objects of the values. Their texts are read by the library, as strictly as those of
/// the engine.
class ExportReader : public JsonHandler {
public:
    explicit ExportReader(std::string_view newText) : text(newText) {}

    void begin(JsonContainer container) override {
        const bool mustBeObject = depth <= optionDepth;
        ++depth;
        isExport = isExport && (!mustBeObject || container == JsonContainer::Object);
    }

    void end(std::size_t position) override {
        if (--depth == optionDepth)
            finishOption(position);
    }

    void name(std::string_view member, std::size_t position) override {
        if (depth == 1)
            isExport = isExport && member == "options" && ++tables == 1;
        else if (depth == optionDepth)
            beginOption(member, position);
        else if (depth == optionDepth + 1)
            ++(member == "type" ? types : member == "value" ? values : others);
    }

    void scalar(const JsonScalar&, std::size_t) override {
        isExport = isExport && depth > optionDepth;
    }

    /// @throws as readExportDocument
    std::optional<OptionTable> result() {
        if (!isExport || tables == 0)
            return std::nullopt;
        if (!failure.empty())
            throw std::runtime_error(failure);
        return std::move(options);
    }

private:
    static constexpr int optionDepth = 2; // of containers around the name of an option

    void beginOption(std::string_view newKey, std::size_t position) {
        key = newKey;
        start = position;
        types = values = others = 0;
    }

    void finishOption(std::size_t position) {
        isExport = isExport && types == 1 && values == 1 && others == 0;
        if (!isExport)
            return;
        const std::string_view withColon = text.substr(start, position - start);
        const auto value = connector::etcd::parseValue(withColon.substr(withColon.find('{')));
        if (!value)
            failure = "Value cannot be read: " + key;
        else if (!options.emplace(key, *value).second)
            failure = "Key stands there twice: " + key;
    }

    const std::string_view text;
    bool isExport = true;
    int depth = 0;
    int tables = 0;
    std::string key;
    std::size_t start = 0; // the byte after the name of the option
    int types = 0;         // members of the option
    int values = 0;
    int others = 0;
    OptionTable options;
    std::string failure; // the last one
};

} // namespace

std::string exportDocument(const OptionTable& options) {
    std::string text = R"({"options":{)";
    const char* separator = "";
    for (const auto& [key, value] : options) {
        text += separator + jsonText(key) + ':' + jsonText(fromOptionValue(value));
        separator = ",";
    }
    return text + "}}\n";
}

std::optional<OptionTable> readExportDocument(std::string_view text) {
    if (!connector::service::isUtf8(text))
        return std::nullopt;
    ExportReader reader(text);
    try {
        connector::service::readJson(text, reader);
    } catch (const std::invalid_argument&) {
        return std::nullopt; // whoever reads the text as a configuration says where it is wrong
    }
    return reader.result();
}

} // namespace connector_config
