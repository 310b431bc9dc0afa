/// The description of all operations, for programs: OpenAPI 3.1.
#include <connector/service/routes/Services.hpp>

#include <connector/service/protocol/Router.hpp>
#include <connector/service/text/Json.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Parser.h>
#include <Poco/String.h>

#include <string>
#include <utility>

namespace connector::service {

namespace {

using Poco::JSON::Array;
using Poco::JSON::Object;

constexpr char schemas[] = R"json({
"OptionType": {"type": "string", "enum": ["bool", "int", "uint", "double", "string", "ustring",
  "boolArray", "intArray", "uintArray", "doubleArray", "stringArray", "ustringArray"]},
"OptionValue": {"type": "object", "required": ["type", "value"], "properties": {
  "type": {"$ref": "#/components/schemas/OptionType"},
  "value": {"$ref": "#/components/schemas/Payload"}}},
"Payload": {"anyOf": [{"type": "boolean"}, {"type": "number"}, {"type": "string"},
  {"type": "array", "items": {"anyOf": [{"type": "boolean"}, {"type": "number"},
    {"type": "string"}]}}]},
"NewValue": {"description": "An option value, or a JSON value whose type is derived from it",
  "anyOf": [{"$ref": "#/components/schemas/OptionValue"},
    {"$ref": "#/components/schemas/Payload"}]},
"Option": {"type": "object", "required": ["key", "source", "value"], "properties": {
  "key": {"type": "string"}, "source": {"type": "string"},
  "value": {"$ref": "#/components/schemas/OptionValue"}}},
"OptionAfterRemoval": {"description": "The option that shows now; only its key if none does",
  "type": "object", "required": ["key"], "properties": {
    "key": {"type": "string"}, "source": {"type": "string"},
    "value": {"$ref": "#/components/schemas/OptionValue"}}},
"Options": {"type": "array", "items": {"$ref": "#/components/schemas/Option"}},
"Explanation": {"type": "object", "required": ["key", "sources"], "properties": {
  "key": {"type": "string"},
  "sources": {"type": "array", "items": {"type": "object",
    "required": ["name", "order", "group", "readOnly", "verdict"], "properties": {
      "name": {"type": "string"}, "order": {"type": "integer"}, "group": {"type": "string"},
      "readOnly": {"type": "boolean"}, "verdict": {"type": "string"},
      "value": {"$ref": "#/components/schemas/OptionValue"}}}},
  "set": {"type": "object", "required": ["source", "verdict"], "properties": {
    "source": {"type": "string"}, "verdict": {"type": "string"}}}}},
"Message": {"type": "object", "required": ["type", "message"], "properties": {
  "id": {}, "type": {"type": "string"}, "message": {"type": "object"}}},
"Description": {"type": "object", "required": ["openapi", "info", "paths"]},
"Health": {"type": "object", "required": ["status"], "properties": {
  "status": {"type": "string"}}},
"Problem": {"type": "object", "required": ["type", "title", "status", "detail", "error"],
  "properties": {
    "id": {}, "type": {"type": "string"}, "title": {"type": "string"},
    "status": {"type": "integer"}, "detail": {"type": "string"}, "key": {"type": "string"},
    "error": {"type": "object", "required": ["type", "text"], "properties": {
      "type": {"type": "string"}, "text": {"type": "string"}}}}}
})json";

Object::Ptr objectOf(const std::string& name, const Poco::Dynamic::Var& value) {
    Object::Ptr object = makeObject();
    object->set(name, value);
    return object;
}

Object::Ptr reference(const std::string& schema) {
    return objectOf("$ref", "#/components/schemas/" + schema);
}

/// @param schema  null for text without a structure
Object::Ptr content(const std::string& type, const char* schema) {
    Object::Ptr described =
        schema == nullptr ? objectOf("type", std::string("string")) : reference(schema);
    return objectOf(type, objectOf("schema", described));
}

/// @param place  "path", "query" or "header"
Object::Ptr parameter(const std::string& name, const std::string& place, bool repeats = false) {
    Object::Ptr schema = objectOf("type", std::string("string"));
    if (repeats) {
        Object::Ptr array = objectOf("type", std::string("array"));
        array->set("items", schema);
        schema = array;
    }
    Object::Ptr object = objectOf("name", name);
    object->set("in", place);
    object->set("required", place == "path");
    object->set("schema", schema);
    return object;
}

Array::Ptr parametersOf(const Operation& operation) {
    Array::Ptr parameters = new Array;
    if (operation.path.find("{key}") != std::string::npos)
        parameters->add(parameter("key", "path"));
    for (const std::string& name : operation.parameters)
        parameters->add(parameter(name, "query", operation.repeatsParameters));
    if (operation.header != nullptr)
        parameters->add(parameter(operation.header, "header"));
    return parameters;
}

Object::Ptr response(const std::string& description, const Object::Ptr& described) {
    Object::Ptr object = objectOf("description", description);
    object->set("content", described);
    return object;
}

Object::Ptr responsesOf(const Operation& operation) {
    Object::Ptr responses = makeObject();
    responses->set("200", response("Success", content(operation.contentType, operation.schema)));
    responses->set("default", response("Failure", content("application/problem+json", "Problem")));
    return responses;
}

Object::Ptr responsesWithoutBody() {
    Object::Ptr responses = makeObject();
    responses->set("200", objectOf("description", std::string("Success")));
    responses->set("default", objectOf("description", std::string("Failure")));
    return responses;
}

/// What GET and HEAD have in common.
Object::Ptr describeRequest(const Operation& operation, const std::string& summary) {
    Object::Ptr object = objectOf("summary", summary);
    Array::Ptr parameters = parametersOf(operation);
    if (parameters->size() > 0)
        object->set("parameters", parameters);
    if (operation.bodySchema != nullptr) {
        Object::Ptr body = objectOf("required", true);
        body->set("content", content("application/json", operation.bodySchema));
        object->set("requestBody", body);
    }
    if (operation.isPublic)
        object->set("security", Array::Ptr(new Array));
    return object;
}

void describe(const Operation& operation, Object& path) {
    Object::Ptr object = describeRequest(operation, operation.summary);
    object->set("responses", responsesOf(operation));
    path.set(Poco::toLower(operation.method), object);
    if (operation.method != "GET")
        return;
    Object::Ptr head = describeRequest(operation, "What GET has, without the body");
    head->set("responses", responsesWithoutBody());
    path.set("head", head);
}

/// The token is optional, since a server may be started without one.
Array::Ptr security() {
    Array::Ptr alternatives = new Array;
    alternatives->add(objectOf("token", Array::Ptr(new Array)));
    alternatives->add(makeObject());
    return alternatives;
}

Object::Ptr components() {
    Poco::JSON::Parser parser;
    Object::Ptr object = objectOf("schemas", parser.parse(schemas).extract<Object::Ptr>());
    Object::Ptr scheme = objectOf("type", std::string("http"));
    scheme->set("scheme", std::string("bearer"));
    object->set("securitySchemes", objectOf("token", scheme));
    return object;
}

std::string describe(const Router& router) {
    Object::Ptr info = objectOf("title", std::string("Configuration service"));
    info->set("version", std::string("1"));
    Object::Ptr paths = makeObject();
    for (const Operation& operation : router.all()) {
        if (!paths->has(operation.path))
            paths->set(operation.path, makeObject());
        describe(operation, *paths->getObject(operation.path));
    }
    Object::Ptr document = objectOf("openapi", std::string("3.1.0"));
    document->set("info", info);
    document->set("paths", paths);
    document->set("components", components());
    document->set("security", security());
    return jsonText(document);
}

} // namespace

void addDescriptionOperation(Router& router) {
    const auto text = std::make_shared<std::string>();
    Operation operation;
    operation.method = "GET";
    operation.path = "/openapi.json";
    operation.summary = "This description";
    operation.schema = "Description";
    operation.handler = [text](const Request&) { return jsonResponse(*text); };
    router.add(std::move(operation));
    *text = describe(router);
}

} // namespace connector::service
