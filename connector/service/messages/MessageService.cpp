#include <connector/service/messages/MessageService.hpp>

#include <connector/service/messages/ParsedRequest.hpp>
#include <connector/service/messages/TooManyElements.hpp>
#include <connector/service/text/Json.hpp>
#include <connector/service/text/LoadingGroup.hpp>
#include <connector/service/text/Secrets.hpp>

#include <connector/configuration/service/AddPropertyFileSource.hpp>
#include <connector/configuration/service/ConfigurationGet.hpp>
#include <connector/configuration/service/ConfigurationOptionResponse.hpp>
#include <connector/configuration/service/ConfigurationSet.hpp>

#include <new>
#include <stdexcept>
#include <utility>

namespace connector::service {

using configuration::AddPropertyFileSource;
using configuration::ConfigurationGet;
using configuration::ConfigurationOptionResponse;
using configuration::ConfigurationServiceProviderImpl;
using configuration::ConfigurationSet;
using MessagePtr = std::unique_ptr<Message>;

namespace {

/// @return the group of the file that a message adds; empty for every other message
std::string addedGroup(const Message& message) {
    const auto* const add = dynamic_cast<const AddPropertyFileSource*>(&message);
    return add == nullptr ? std::string() : add->group;
}

/// @return the key that a message names; empty for a message that names none
std::string keyOf(const Message& message) {
    if (const auto* const get = dynamic_cast<const ConfigurationGet*>(&message))
        return get->key;
    if (const auto* const set = dynamic_cast<const ConfigurationSet*>(&message))
        return set->key;
    return {};
}

void addMissingOrder(const Poco::JSON::Object& envelope, int order) {
    Poco::JSON::Object::Ptr content = envelope.getObject("message");
    if (!content.isNull() && content->isNull("order"))
        content->set("order", order);
}

void maskValue(Message& reply) {
    auto* const response = dynamic_cast<ConfigurationOptionResponse*>(&reply);
    if (response != nullptr && response->option)
        response->option->value = std::string(Secrets::mask);
}

/// Why a message is not executed. Not a std::exception, because what() would end at a NUL.
struct Refusal {
    std::string text;
};

} // namespace

/// The processing of one request. Each step sets the outcome that a failure in it means before it
/// begins, so `outcome` is right whatever is thrown.
class MessageService::Exchange {
public:
    explicit Exchange(const MessageService& newService) : service(newService) {}

    Reply run(const std::string& text) {
        try {
            return {Outcome::Done, withId(id, execute(text)), {}, key, hasOption};
        } catch (const Refusal& refusal) {
            return failed(errorJson(refusal.text, id), refusal.text);
        } catch (const TooManyElements& error) {
            outcome = Outcome::TooLarge;
            return failed(errorJson(error, id), error.what());
        } catch (const std::bad_alloc& error) {
            outcome = Outcome::OutOfMemory;
            return failed(errorJson(error, id), error.what());
        } catch (const std::exception& error) {
            return failed(errorJson(error, id), error.what());
        } catch (...) {
            return failed(errorJson("Unknown failure", id), "Unknown failure");
        }
    }

private:
    Reply failed(std::string text, std::string failure) const {
        return {outcome, std::move(text), std::move(failure), key, false};
    }

    std::string execute(const std::string& text) {
        MessagePtr message = read(text);
        key = keyOf(*message);
        const Decision decision = authorize(*message);
        const MessagePtr reply = resultOf(dispatch(std::move(message)));
        if (decision.masksValue)
            maskValue(*reply);
        return toText(reply);
    }

    /// The objects of the request are gone when this returns.
    MessagePtr read(const std::string& text) {
        const ParsedRequest request = parseRequest(text);
        id = request.id;
        if (service.missingOrder && !request.object.isNull())
            addMissingOrder(*request.object, *service.missingOrder);
        return service.serializer->deserialize(request.content());
    }

    Decision authorize(Message& message) {
        outcome = Outcome::Refused;
        Decision decision = service.authorizer ? service.authorizer(message) : Decision{};
        if (decision.isTooLarge)
            outcome = Outcome::TooLarge;
        if (decision.refusal)
            throw Refusal{*decision.refusal};
        return decision;
    }

    /// Throws what the configuration throws.
    Future<MessagePtr> dispatch(MessagePtr message) {
        outcome = Outcome::Failed;
        const LoadingGroup loading(addedGroup(*message));
        return service.provider->dispatch(std::move(message), Address(), nullptr);
    }

    /// The future holds the failures of the message framework.
    MessagePtr resultOf(Future<MessagePtr> future) {
        try {
            return future.get();
        } catch (const std::invalid_argument&) { // not a message of this service
            outcome = Outcome::InvalidMessage;
            throw;
        } catch (const std::runtime_error&) { // the service is not running
            outcome = Outcome::Stopped;
            throw;
        }
    }

    std::string toText(const MessagePtr& reply) {
        if (const auto* const response = dynamic_cast<ConfigurationOptionResponse*>(reply.get());
            response != nullptr && response->option) {
            hasOption = true;
            return R"({"type":"connector/configuration/ConfigurationOptionResponse","message":)" +
                   optionJson(*response->option) + "}";
        }
        const Poco::JSON::Object::Ptr written = service.serializer->serialize(reply);
        Poco::JSON::Object::Ptr object = makeObject(); // puts the type first, for human readers
        object->set("type", written->get("type"));
        object->set("message", written->get("message"));
        return jsonText(object);
    }

    const MessageService& service;
    std::optional<std::string> id;
    std::string key;
    bool hasOption = false;
    Outcome outcome = Outcome::InvalidMessage;
};

MessageService::MessageService(const std::shared_ptr<configuration::Configuration>& configuration,
                               Authorizer newAuthorizer, std::optional<int> newMissingOrder)
    : serializer(std::make_shared<json::JsonSerializerImpl>()), serialization(serializer),
      provider(std::make_shared<ConfigurationServiceProviderImpl>(configuration)),
      authorizer(std::move(newAuthorizer)), missingOrder(newMissingOrder) {
    provider->start();
}

MessageService::~MessageService() = default;

Reply MessageService::reply(const std::string& request) const {
    return Exchange(*this).run(request);
}

void MessageService::stop() {
    provider->stop();
}

} // namespace connector::service
