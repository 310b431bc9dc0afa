/// The reply to ConfigurationGet and ConfigurationSet.
#pragma once

#include <connector/Message.hpp>
#include <connector/configuration/Option.hpp>
#include <connector/configuration/service/Declarations.hpp>

#include <memory>

namespace connector::configuration {

class CONNECTOR_EXPORT ConfigurationOptionResponse : public Message {
public:
    /// There is no such option.
    ConfigurationOptionResponse();
    /// Holds a copy of the option.
    explicit ConfigurationOptionResponse(const Option& newOption);
    ~ConfigurationOptionResponse() override;

    std::unique_ptr<Option> option; ///< found or written; null: there is no such option
};

} // namespace connector::configuration
