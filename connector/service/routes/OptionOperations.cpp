/// Reading, writing and removing options, and explaining their values.
#include <connector/service/routes/Services.hpp>

#include <connector/service/messages/OptionBody.hpp>
#include <connector/service/messages/TooManyElements.hpp>
#include <connector/service/protocol/Router.hpp>
#include <connector/service/text/Explanation.hpp>
#include <connector/service/text/Json.hpp>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace connector::service {

namespace {

using configuration::Option;

class OptionOperations {
public:
    explicit OptionOperations(const Services& newServices) : services(newServices) {}

    /// Converts option by option: JSON objects take many times the memory of their text.
    Response list(const Request& request) const {
        const std::vector<std::string> prefixes = request.all("prefix");
        std::string text = "[";
        for (const Option& option :
             services.configuration.optionsBelow(prefixes.empty() ? "" : prefixes.front())) {
            text += text.size() > 1 ? "," : "";
            text += jsonOf(option);
        }
        text += ']';
        return jsonResponse(std::move(text));
    }

    Response get(const Request& request) const {
        const std::optional<Option> option = find(request.key);
        if (!option)
            throw notFound(request.key);
        return jsonResponse(jsonOf(*option));
    }

    Response put(const Request& request) const {
        requireWritable(request.key);
        services.configuration.set(request.key, valueIn(request)).get();
        return shown(request.key);
    }

    Response remove(const Request& request) const {
        requireWritable(request.key);
        if (!services.configuration.reset(request.key).get()) // another source may have the option
            throw HttpError(Status::not_found,
                            "There is no value that PUT would replace: " + request.key,
                            request.key);
        return shown(request.key);
    }

    Response explain(const Request& request) const {
        ++services.metrics.lookups;
        return jsonResponse(
            Explanation(services.configuration, services.secrets, request.key).json());
    }

private:
    static HttpError notFound(const std::string& key) {
        return HttpError(Status::not_found, "No option with the specified key was found: " + key,
                         key);
    }

    static OptionValue valueIn(const Request& request) {
        try {
            return readOptionBody(request.body);
        } catch (const NotJson& error) {
            throw HttpError(Status::bad_request, error.what(), request.key);
        } catch (const UnacceptableValue& error) {
            throw HttpError(Status::unprocessable_entity, error.what(), request.key);
        } catch (const TooManyElements& error) {
            throw HttpError(Status::payload_too_large, error.what(), request.key);
        }
    }

    void requireWritable(const std::string& key) const {
        if (!services.policy.isWritable(key))
            throw HttpError(Status::forbidden, Policy::refusalToSet(key), key);
    }

    std::optional<Option> find(const std::string& key) const {
        std::vector<Option> options = services.configuration.optionsOf({key});
        if (options.empty())
            return std::nullopt;
        return std::move(options.front());
    }

    /// @return the option as it is now; only its key if it has no value
    Response shown(const std::string& key) const {
        if (const std::optional<Option> option = find(key))
            return jsonResponse(jsonOf(*option));
        Poco::JSON::Object::Ptr object = makeObject();
        object->set("key", key);
        return jsonResponse(jsonText(object));
    }

    std::string jsonOf(const Option& option) const {
        ++services.metrics.lookups;
        return optionJson(services.secrets.masked(option));
    }

    const Services services;
};

} // namespace

void addOptionOperations(Router& router, const Services& services) {
    using Function = Response (OptionOperations::*)(const Request&) const;
    const auto options = std::make_shared<const OptionOperations>(services);
    const auto operation = [&](const char* method, const char* path, const char* schema,
                               const char* summary, Function function) {
        Operation made;
        made.schema = schema;
        made.method = method;
        made.path = path;
        made.summary = summary;
        made.handler = [options, function](const Request& request) {
            return ((*options).*function)(request);
        };
        return made;
    };
    Operation list =
        operation("GET", "/options", "Options", "All options, sorted by key, as of one moment",
                  &OptionOperations::list);
    list.parameters = {"prefix"};
    list.isShared = true;
    router.add(std::move(list));
    router.add(operation("GET", "/options/{key}", "Option", "One option", &OptionOperations::get));
    Operation put =
        operation("PUT", "/options/{key}", "Option", "Sets an option", &OptionOperations::put);
    put.needsJson = true;
    put.bodySchema = "NewValue";
    router.add(std::move(put));
    router.add(operation("DELETE", "/options/{key}", "OptionAfterRemoval",
                         "Removes what PUT would have replaced", &OptionOperations::remove));
    router.add(operation("GET", "/explain/{key}", "Explanation",
                         "What each source has for a key, and where a new value would go",
                         &OptionOperations::explain));
}

} // namespace connector::service
