#include <connector/service/ServiceError.hpp>

#include <utility>

namespace connector::service {

ServiceError::ServiceError(const std::string& text, unsigned newStatus, std::string newKey)
    : runtime_error(text), httpStatus(newStatus), optionKey(std::move(newKey)) {
}

ServiceError::~ServiceError() = default;

} // namespace connector::service
