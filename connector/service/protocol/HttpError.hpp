/// A failure to serve a request.
#pragma once

#include <ostream> // before the next one, which uses it without including it

#include <boost/beast/http/status.hpp>

#include <stdexcept>
#include <string>
#include <utility>

namespace connector::service {

using Status = boost::beast::http::status;

/// Becomes a response with this status, see problemResponse.
class HttpError : public std::runtime_error {
public:
    /// @param newKey    the option that is concerned; empty for none
    /// @param newLines  further header lines of the response, each with its line break
    HttpError(Status newStatus, const std::string& newText, std::string newKey = {},
              std::string newLines = {})
        : runtime_error(newText), status(newStatus), text(newText), key(std::move(newKey)),
          lines(std::move(newLines)) {}

    const Status status;
    const std::string text; ///< the whole text, while what() ends at a NUL
    const std::string key;
    const std::string lines;
};

} // namespace connector::service
