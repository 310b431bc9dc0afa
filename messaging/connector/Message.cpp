#include <connector/Message.hpp>

namespace connector {

Message::Message() = default;
Message::~Message() = default;

} // namespace connector
