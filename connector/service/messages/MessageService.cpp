#include <connector/service/messages/MessageService.hpp>

#include <connector/service/messages/RequestText.hpp>
#include <connector/service/text/Json.hpp>
#include <connector/service/text/LoadingGroup.hpp>
#include <connector/service/text/Secrets.hpp>

#include <connector/configuration/service/AddPropertyFileSource.hpp>
#include <connector/configuration/service/ConfigurationOptionResponse.hpp>

#include <stdexcept>

namespace connector::service {

using connector::Future;
using connector::Message;
using connector::configuration::AddPropertyFileSource;
using connector::configuration::ConfigurationOptionResponse;
using connector::configuration::ConfigurationServiceProviderImpl;
using MessagePtr = std::unique_ptr<Message>;

namespace {

/// The group of the file that a message adds; empty for every other message.
std::string groupOf(const Message& message) {
    const auto* const add = dynamic_cast<const AddPropertyFileSource*>(&message);
    return add == nullptr ? std::string() : add->group;
}

void hideValue(Message& reply) {
    auto* const response = dynamic_cast<ConfigurationOptionResponse*>(&reply);
    if (response != nullptr && response->option)
        response->option->value = std::string(Secrets::mask);
}

/// Why a message is not executed. No exception of the standard's, whose text would end at a NUL.
struct Refusal {
    std::string text;
};

} // namespace

/// One request on its way through the service. Every step says what its failure means before it
/// begins, so that whatever leaves it is answered.
class MessageService::Exchange {
public:
    explicit Exchange(const MessageService& newService) : service(newService) {}

    Reply run(const std::string& text) {
        try {
            return {Outcome::Done, withId(id, execute(text))};
        } catch (const Refusal& refusal) {
            return {outcome, errorText(refusal.text, id)};
        } catch (const std::exception& error) {
            return {outcome, errorText(error, id)};
        } catch (...) {
            return {outcome, errorText("Unknown failure", id)};
        }
    }

private:
    std::string execute(const std::string& text) {
        const RequestText request = readRequest(text);
        id = request.id;
        MessagePtr message = service.serializer->deserialize(request.content());
        const Verdict verdict = judge(*message);
        const MessagePtr reply = take(dispatch(std::move(message)));
        if (verdict.hidesValue)
            hideValue(*reply);
        return textOf(reply);
    }

    Verdict judge(Message& message) {
        outcome = Outcome::Refused;
        const Verdict verdict = service.judge ? service.judge(message) : Verdict{};
        if (verdict.refusal)
            throw Refusal{*verdict.refusal};
        return verdict;
    }

    /// What the configuration refuses is thrown from here.
    Future<MessagePtr> dispatch(MessagePtr message) {
        outcome = Outcome::Failed;
        const LoadingGroup loading(groupOf(*message));
        return service.provider->dispatch(std::move(message), connector::Address(), nullptr);
    }

    /// What the message framework refuses is in the future.
    MessagePtr take(Future<MessagePtr> future) {
        try {
            return future.get();
        } catch (const std::invalid_argument&) { // none of the service's messages
            outcome = Outcome::NoMessage;
            throw;
        } catch (const std::runtime_error&) { // it does not run
            outcome = Outcome::Stopped;
            throw;
        }
    }

    std::string textOf(const MessagePtr& reply) const {
        const Poco::JSON::Object::Ptr written = service.serializer->serialize(reply);
        Poco::JSON::Object::Ptr object = makeObject(); // the type first, for those who read along
        object->set("type", written->get("type"));
        object->set("message", written->get("message"));
        return jsonText(object);
    }

    const MessageService& service;
    std::optional<std::string> id;
    Outcome outcome = Outcome::NoMessage;
};

MessageService::MessageService(
    const std::shared_ptr<connector::configuration::Configuration>& configuration, Judge newJudge)
    : serializer(std::make_shared<connector::json::JsonSerializerImpl>()),
      serialization(serializer),
      provider(std::make_shared<ConfigurationServiceProviderImpl>(configuration)),
      judge(std::move(newJudge)) {
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
