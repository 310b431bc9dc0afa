/// What a HttpClient reports.
#pragma once

#include <connector/service/Export.hpp>

#include <stdexcept>
#include <string>

namespace connector::service {

/// A service could not be reached, has refused a request, or has sent what is no answer to it.
class CONNECTOR_SERVICE_EXPORT ServiceError : public std::runtime_error {
public:
    /// @param text       the detail of the service's answer, or why there is none
    /// @param newStatus  of the response; 0 if there is none
    /// @param newKey     the option that is concerned; empty for none
    explicit ServiceError(const std::string& text, unsigned newStatus = 0, std::string newKey = {});
    ~ServiceError() override;

    unsigned status() const noexcept { return httpStatus; }
    const std::string& key() const noexcept { return optionKey; }

private:
    unsigned httpStatus;
    std::string optionKey;
};

} // namespace connector::service
