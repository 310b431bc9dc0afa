#include "checking/Reports.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>

#include <Poco/JSON/Array.h>

namespace connector_config {

using connector::service::escaped;
using connector::service::jsonText;
using connector::service::makeObject;

namespace {

Poco::JSON::Object::Ptr toJson(const FileFinding& finding) {
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("line", finding.line);
    object->set("column", finding.column);
    object->set("rule", finding.rule);
    object->set("text", finding.text);
    return object;
}

Poco::JSON::Object::Ptr toJson(const CheckedFile& file) {
    Poco::JSON::Array::Ptr findings = new Poco::JSON::Array;
    for (const FileFinding& finding : file.findings)
        findings->add(toJson(finding));
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("file", file.name);
    object->set("findings", findings);
    if (!file.error.empty())
        object->set("error", file.error);
    return object;
}

} // namespace

std::string asLines(const std::vector<CheckedFile>& files) {
    std::string lines;
    for (const CheckedFile& file : files) {
        for (const FileFinding& finding : file.findings)
            lines += escaped(file.name) + ':' + std::to_string(finding.line) + ':' +
                     std::to_string(finding.column) + ": warning: " + escaped(finding.text) + " [" +
                     finding.rule + "]\n";
    }
    return lines;
}

std::string asJson(const std::vector<CheckedFile>& files) {
    Poco::JSON::Array::Ptr array = new Poco::JSON::Array;
    for (const CheckedFile& file : files)
        array->add(toJson(file));
    Poco::JSON::Object::Ptr document = makeObject();
    document->set("files", array);
    return jsonText(document) + '\n';
}

} // namespace connector_config
