/// The base of every message.
#pragma once

#include <connector/platform/Export.hpp>

namespace connector {

/// Owned by a std::unique_ptr<Message> and destroyed through it. A bare Message says that something
/// was done and nothing more. Has no data, so that the fields of a message begin right behind its
/// virtual table.
class CONNECTOR_PLATFORM_EXPORT Message {
public:
    Message();
    virtual ~Message();

    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;
};

} // namespace connector
