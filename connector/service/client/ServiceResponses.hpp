/// What the responses of a service mean.
#pragma once

#include <connector/service/ServiceError.hpp>

#include <connector/configuration/Option.hpp>
#include <connector/configuration/SourceAnswer.hpp>

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace connector::service {

/// A text is not what the service should have sent. The text says why.
class NotUnderstood : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

// All of these throw NotUnderstood.

configuration::Option readOption(std::string_view json);

/// @param json  an option, or only the key of one that is no more
std::string readKey(std::string_view json);

/// @param json  a reply to a ConfigurationGet; nothing if it has no option
std::optional<configuration::Option> readReplyWithOption(std::string_view json);

std::vector<configuration::Option> readOptions(std::string_view json);

/// @param json  a reply to a ConfigurationKeys
std::set<std::string> readReplyWithKeys(std::string_view json);

std::vector<configuration::SourceAnswer> readExplanation(std::string_view json);

/// Throws nothing of its own: a text that is no problem document has no detail.
/// @param json        of a response that reports a failure
/// @param statusLine  the text if there is no detail
ServiceError readProblem(std::string_view json, unsigned status, const std::string& statusLine);

} // namespace connector::service
