/// The base class of all messages.
#pragma once

#include <connector/platform/Export.hpp>

namespace connector {

/// Messages are owned by a std::unique_ptr<Message> and destroyed through it. An object of this
/// class itself is a reply without data: the request succeeded. The class has no data members, so
/// the fields of a message follow directly after its virtual table pointer.
class CONNECTOR_PLATFORM_EXPORT Message {
public:
    Message();
    virtual ~Message();

    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;
};

} // namespace connector
