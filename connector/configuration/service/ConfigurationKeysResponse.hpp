/// The reply to ConfigurationKeys.
#pragma once

#include <connector/Message.hpp>
#include <connector/configuration/service/Declarations.hpp>

#include <set>
#include <string>

namespace connector::configuration {

class CONNECTOR_EXPORT ConfigurationKeysResponse : public Message {
public:
    /// @param newKeys  moved from: empty afterwards
    explicit ConfigurationKeysResponse(std::set<std::string>&& newKeys);
    ~ConfigurationKeysResponse() override;

    std::set<std::string> keys; ///< every key of the configuration
};

} // namespace connector::configuration
