#include <connector/service/messages/Reply.hpp>

#include <connector/service/text/Json.hpp>

#include <boost/core/demangle.hpp>

#include <stdexcept>
#include <typeinfo>

namespace connector::service {

namespace {

std::string errorJson(const std::type_info& type, const std::string& text,
                      const std::optional<std::string>& id) {
    Poco::JSON::Object::Ptr description = makeObject();
    description->set("type", boost::core::demangle(type.name()));
    description->set("text", text);
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("error", description);
    return withId(id, jsonText(object));
}

} // namespace

std::string errorJson(const std::exception& error, const std::optional<std::string>& id) {
    return errorJson(typeid(error), error.what(), id);
}

std::string errorJson(const std::string& text, const std::optional<std::string>& id) {
    return errorJson(typeid(std::runtime_error), text, id);
}

std::string withId(const std::optional<std::string>& id, const std::string& object) {
    return id ? "{\"id\":" + *id + "," + object.substr(1) : object;
}

} // namespace connector::service
