/// The Static Analysis Results Interchange Format, version 2.1.0.
#include "checking/Reports.hpp"

#include "arguments/CheckRules.hpp"

#include <connector/service/text/Json.hpp>
#include <connector/service/text/Utf8.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/URI.h>

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace connector_config {

using connector::service::makeObject;

namespace {

using Poco::Dynamic::Var;
using Poco::JSON::Array;
using Poco::JSON::Object;

Object::Ptr object(std::initializer_list<std::pair<const char*, Var>> members) {
    Object::Ptr result = makeObject();
    for (const auto& [name, value] : members)
        result->set(name, value);
    return result;
}

Object::Ptr message(const std::string& text) {
    return object({{"text", text}});
}

Array::Ptr arrayOf(const Var& element) {
    Array::Ptr array = new Array;
    array->add(element);
    return array;
}

Array::Ptr ruleObjects() {
    Array::Ptr rules = new Array;
    for (const CheckRule& rule : checkRules())
        rules->add(object({{"id", std::string(rule.name)},
                           {"shortDescription", message(std::string(rule.text))}}));
    return rules;
}

std::size_t indexOf(const std::string& rule) {
    const std::vector<CheckRule>& rules = checkRules();
    return static_cast<std::size_t>(
        std::find_if(rules.begin(), rules.end(),
                     [&rule](const CheckRule& candidate) { return candidate.name == rule; }) -
        rules.begin());
}

/// @return where the line begins
std::size_t offsetOf(const std::string& text, std::size_t line) {
    std::size_t offset = 0;
    for (; line > 1 && offset < text.size(); --line) {
        offset = std::min(text.find_first_of("\r\n", offset), text.size());
        offset += text.compare(offset, 2, "\r\n") == 0 ? 2 : 1;
    }
    return std::min(offset, text.size());
}

/// SARIF counts characters. @return the column in code points, from 1
std::size_t characterColumn(const std::string& text, const FileFinding& finding) {
    std::size_t column = 1;
    const std::string_view before =
        std::string_view(text).substr(offsetOf(text, finding.line), finding.column - 1);
    connector::service::forEachCharacter(before, [&column](const auto&) { ++column; });
    return column;
}

/// @return a reference relative to the working directory, or an absolute one
std::string uriOf(const std::string& name) {
    std::string uri;
    Poco::URI::encode(name, "?#%:[]@!$&'()*+,;=", uri);
    const bool isAbsolute = !name.empty() && name.front() == '/';
    return isAbsolute ? "file://" + uri : uri;
}

Object::Ptr artifact(const std::string& name) {
    return object({{"artifactLocation", object({{"uri", uriOf(name)}})}});
}

Object::Ptr result(const CheckedFile& file, const FileFinding& finding) {
    Object::Ptr location = artifact(file.name);
    location->set("region", object({{"startLine", finding.line},
                                    {"startColumn", characterColumn(file.text, finding)}}));
    return object({{"ruleId", finding.rule},
                   {"ruleIndex", indexOf(finding.rule)},
                   {"level", "warning"},
                   {"message", message(finding.text)},
                   {"locations", arrayOf(object({{"physicalLocation", location}}))}});
}

Object::Ptr invocation(const std::vector<CheckedFile>& files) {
    Array::Ptr notifications = new Array;
    for (const CheckedFile& file : files) {
        if (!file.error.empty())
            notifications->add(object({{"level", "error"}, {"message", message(file.error)}}));
    }
    const bool isSuccess = notifications->size() == 0;
    return object(
        {{"executionSuccessful", isSuccess}, {"toolExecutionNotifications", notifications}});
}

Object::Ptr driver() {
    return object({{"name", "connector-config"},
                   {"version", CONNECTOR_CONFIG_VERSION},
                   {"rules", ruleObjects()}});
}

} // namespace

std::string asSarif(const std::vector<CheckedFile>& files) {
    Array::Ptr results = new Array;
    for (const CheckedFile& file : files) {
        for (const FileFinding& finding : file.findings)
            results->add(result(file, finding));
    }
    const Object::Ptr run = object({{"tool", object({{"driver", driver()}})},
                                    {"invocations", arrayOf(invocation(files))},
                                    {"columnKind", "unicodeCodePoints"},
                                    {"results", results}});
    const Object::Ptr log = object({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                                    {"version", "2.1.0"},
                                    {"runs", arrayOf(run)}});
    return connector::service::jsonText(log) + '\n';
}

} // namespace connector_config
