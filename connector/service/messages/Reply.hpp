/// What a request is answered with.
#pragma once

#include <Poco/Dynamic/Var.h>

#include <exception>
#include <optional>
#include <string>

namespace connector::service {

enum class Outcome {
    Done,      ///< the reply is a message
    NoMessage, ///< what arrived is none, or none that the service takes
    Refused,   ///< the one who asks must not have it
    Failed,    ///< the configuration says no
    Stopped,   ///< the service does not run any more
};

struct Reply {
    Outcome outcome;
    std::string text; ///< a JSON object on one line, without the line's end
};

/// @return {"error": {"type": the C++ type of the exception, "text": its text}}, behind the id
std::string errorText(const std::exception& error, const std::optional<std::string>& id = {});

/// The same for a text of our own, which is a std::runtime_error to the others. It comes whole, where
/// that of an exception ends at a NUL character.
std::string errorText(const std::string& text, const std::optional<std::string>& id = {});

/// @return a JSON document on one line. What JSON cannot say, for values may hold any bytes and any
///         double, is said as near as can be: bytes that are no UTF-8 as U+FFFD; infinity and what is
///         not a number as the strings that read as these.
std::string jsonText(const Poco::Dynamic::Var& document);

/// @param object  the text of an object that is not empty
std::string withId(const std::optional<std::string>& id, const std::string& object);

} // namespace connector::service
