/// Replies to requests.
#pragma once

#include <exception>
#include <optional>
#include <string>

namespace connector::service {

enum class Outcome {
    Done,           ///< the reply is a message
    InvalidMessage, ///< the request is not a message, or not one that the service accepts
    Refused,        ///< the client is not allowed to do this
    TooLarge,       ///< the request has too many elements, or would load too much
    Failed,         ///< the configuration threw an exception
    Stopped,        ///< the service has been stopped
    OutOfMemory,    ///< nothing was done, or all of it and only the reply is missing
};

struct Reply {
    Outcome outcome;
    std::string text;       ///< a JSON object on a single line, without a line break
    std::string failure;    ///< its text, unless the outcome is Done
    std::string key;        ///< the option that the request is about; empty for none
    bool hasOption = false; ///< whether it is a message with an option
};

/// @param id  JSON that becomes the first member of the result
/// @return {"error": {"type": the C++ type of the exception, "text": its what()}}
std::string errorJson(const std::exception& error, const std::optional<std::string>& id = {});

/// The same for a text without an exception, which is reported as a std::runtime_error. Use this
/// for texts that can contain NUL, where what() would end.
std::string errorJson(const std::string& text, const std::optional<std::string>& id = {});

/// @param id      JSON
/// @param object  JSON of an object with at least one member
/// @return the object with the id as its first member, or as it is if there is no id
std::string withId(const std::optional<std::string>& id, const std::string& object);

} // namespace connector::service
