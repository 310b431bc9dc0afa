#include "configuration/service/ScriptedConfiguration.hpp"

#include <fl/i18n/codecvt.hpp>

#include <stdexcept>
#include <utility>

namespace test {

namespace {

template <typename... Words>
std::string call(const std::string& operation, const Words&... words) {
    std::string arguments;
    ((arguments += (arguments.empty() ? "" : ", ") + words), ...);
    return operation + "(" + arguments + ")";
}

std::string narrow(const std::u16string& text) {
    return fl::i18n::to_string(text, fl::i18n::codecvt_ustring_to_string("UTF-8", true));
}

[[noreturn]] void refuse(const std::string& operation) {
    throw std::logic_error("The service must not call " + operation + ".");
}

} // namespace

template <typename T>
connector::Future<T> ScriptedConfiguration::answer(const std::string& description,
                                                   const std::function<Future<T>()>& script) {
    calls.push_back(description);
    return script ? script() : throw std::logic_error("No script for " + description + ".");
}

connector::Future<bool> ScriptedConfiguration::has(const std::string& key) {
    return answer(call("has", key), onHas);
}

connector::Future<connector::configuration::Option>
ScriptedConfiguration::getOption(const std::string& key) {
    return answer(call("getOption", key), onGetOption);
}

connector::Future<connector::configuration::OptionValue>
ScriptedConfiguration::set(const std::string& key, OptionValue value) {
    written.push_back(std::move(value));
    return answer(call("set", key), onSet);
}

connector::Future<connector::configuration::OptionValue>
ScriptedConfiguration::set(const std::string& key, OptionValue value, const std::string& source) {
    written.push_back(std::move(value));
    return answer(call("set", key, source), onSet);
}

connector::Future<std::set<std::string>> ScriptedConfiguration::keys() {
    return answer(call("keys"), onKeys);
}

connector::Future<bool> ScriptedConfiguration::addPropertyFileSource(const std::string& name,
                                                                     const std::string& group,
                                                                     int order, bool readOnly,
                                                                     const std::u16string& path) {
    return answer(call("addPropertyFileSource", name, group, std::to_string(order),
                       std::string(readOnly ? "true" : "false"), narrow(path)),
                  onAddPropertyFileSource);
}

connector::Future<connector::configuration::OptionValue>
ScriptedConfiguration::get(const std::string&) {
    refuse("get");
}

std::shared_ptr<connector::reactive_streams::CachedValuePublisher<
    connector::configuration::OptionValue, std::function<void()>>>
ScriptedConfiguration::watchOption(const std::string&) {
    refuse("watchOption");
}

connector::Future<bool>
ScriptedConfiguration::addInMemorySource(const std::string&, const std::string&, int, bool,
                                         std::unordered_map<std::string, OptionValue>&&) {
    refuse("addInMemorySource");
}

connector::Future<bool> ScriptedConfiguration::addEnvironmentSource(const std::string&,
                                                                    const std::string&, int) {
    refuse("addEnvironmentSource");
}

connector::Future<bool> ScriptedConfiguration::removeSource(const std::string&) {
    refuse("removeSource");
}

std::shared_ptr<connector::configuration::Configuration> ScriptedConfiguration::getPtr() {
    refuse("getPtr");
}

} // namespace test
