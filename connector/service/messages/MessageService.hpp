/// The configuration service behind both doors: text comes in, text goes out.
#pragma once

#include <connector/service/messages/Reply.hpp>

#include <connector/configuration/json/ConfigurationJsonSerialization.hpp>
#include <connector/configuration/service/ConfigurationServiceProviderImpl.hpp>
#include <connector/json/JsonSerializerImpl.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace connector::service {

/// Whether somebody may have what a message asks for.
struct Verdict {
    std::optional<std::string> refusal; ///< why not
    std::shared_ptr<const void> hold;   ///< something to be kept until the message was executed
    bool hidesValue = false;            ///< the value in the reply must not be shown
};

/// May change the message, to say more exactly what is allowed.
using Judge = std::function<Verdict(connector::Message&)>;

/// All operations may be called from any thread.
class MessageService {
public:
    /// @param newJudge  asked about every message; none allows everything
    explicit MessageService(
        const std::shared_ptr<connector::configuration::Configuration>& configuration,
        Judge newJudge = {});
    ~MessageService();

    /// Executes a request and tells how that went. Nothing that arrives makes it throw.
    Reply reply(const std::string& request) const;

    /// From now on every message is answered with Outcome::Stopped.
    void stop();

private:
    class Exchange;

    const std::shared_ptr<connector::json::JsonSerializerImpl> serializer;
    const connector::configuration::ConfigurationJsonSerialization serialization;
    const std::shared_ptr<connector::configuration::ConfigurationServiceProviderImpl> provider;
    const Judge judge;
};

} // namespace connector::service
