#include <connector/service/messages/RequestHandler.hpp>

#include <connector/service/messages/TooManyElements.hpp>

#include <algorithm>

namespace connector::service {

using Excess = ParsedRequest::Excess;

struct RequestMember {
    std::string_view name;
    const RequestPart* part;
};

struct RequestPart {
    enum class Kind {
        Nothing, // no message reads it
        Whole,   // with all its containers: where text is expected, they convert to their JSON
        Flag,    // a container converts to a boolean, whether it has content, and to nothing else
        Members  // some members of an object; any other value is read like null
    };

    Kind kind;
    const RequestMember* members = nullptr;
    std::size_t count = 0;

    const RequestPart* of(std::string_view name) const;
};

namespace {

using Kind = RequestPart::Kind;

constexpr RequestPart nothing{Kind::Nothing};
constexpr RequestPart whole{Kind::Whole};
constexpr RequestPart flag{Kind::Flag};

template <std::size_t Count>
constexpr RequestPart membersPart(const RequestMember (&members)[Count]) {
    return {Kind::Members, members, Count};
}

constexpr RequestMember valueMembers[] = {{"type", &whole}, {"value", &whole}};
constexpr RequestPart value = membersPart(valueMembers);

/// Of all messages. Which one it is may stand at the end of the text.
constexpr RequestMember messageMembers[] = {
    {"key", &whole},  {"source", &whole},  {"value", &value}, {"name", &whole}, {"group", &whole},
    {"order", &flag}, {"readOnly", &flag}, {"path", &whole},  {"keys", &whole}};
constexpr RequestPart message = membersPart(messageMembers);

constexpr RequestMember envelopeMembers[] = {{"type", &whole}, {"message", &message}};
constexpr RequestPart envelope = membersPart(envelopeMembers);

/// @param json  valid JSON
std::string withoutWhitespace(std::string_view json) {
    std::string result;
    result.reserve(json.size());
    bool isInString = false;
    bool isEscaped = false;
    for (const char byte : json) {
        if (byte == '"' && !isEscaped)
            isInString = !isInString;
        isEscaped = byte == '\\' && !isEscaped;
        if (isInString || std::string_view(" \t\r\n").find(byte) == std::string_view::npos)
            result += byte;
    }
    return result;
}

} // namespace

const RequestPart* RequestPart::of(std::string_view name) const {
    if (kind == Kind::Whole)
        return &whole;
    const RequestMember* const end = members + count;
    const RequestMember* const found = std::find_if(
        members, end, [name](const RequestMember& member) { return member.name == name; });
    return found == end ? &nothing : found->part;
}

RequestHandler::RequestHandler() : next(&envelope) {
}

void RequestHandler::begin(JsonContainer container) {
    if (++depth > maxNesting)
        drop(Excess::Nesting);
    if (skipped != 0)
        noteContent();
    else
        beginPart(container);
}

void RequestHandler::end(std::size_t position) {
    if (skipped == depth) {
        endSkipping();
    } else if (skipped == 0) {
        parts.pop_back();
        build([this] { builder.end(); });
    }
    if (--depth == 1)
        endMember(position);
}

void RequestHandler::name(std::string_view text, std::size_t position) {
    if (depth == 1)
        idStart = text == "id" ? std::optional(position) : std::nullopt;
    if (skipped != 0)
        return;
    next = parts.back()->of(text);
    if (next != &nothing)
        build([&] { builder.name(text); });
}

void RequestHandler::scalar(const JsonScalar& scalar, std::size_t position) {
    if (skipped != 0)
        noteContent();
    else if (next->kind == Kind::Members)
        build([this] { builder.scalar({}); });
    else if (next != &nothing)
        build([&] { builder.scalar(scalar); });
    if (depth == 1)
        endMember(position);
}

ParsedRequest RequestHandler::result(const std::string& text) const {
    ParsedRequest request;
    request.excess = excess;
    if (excess == Excess::None)
        request.object = builder.result().extract<Poco::JSON::Object::Ptr>();
    if (id) {
        const std::size_t start = text.find(':', id->start) + 1;
        request.id = withoutWhitespace(std::string_view(text).substr(start, id->end - start));
    }
    return request;
}

template <typename Step>
void RequestHandler::build(Step step) {
    try {
        step();
    } catch (const TooManyElements&) {
        drop(Excess::Elements);
    }
}

void RequestHandler::beginPart(JsonContainer container) {
    const bool isRead = next->kind == Kind::Whole ||
                        (next->kind == Kind::Members && container == JsonContainer::Object);
    if (isRead) {
        parts.push_back(next);
        build([&] { builder.begin(container); });
        return;
    }
    if (next->kind == Kind::Members)
        build([this] { builder.scalar({}); });
    skipContainer(next->kind == Kind::Flag);
}

void RequestHandler::skipContainer(bool newIsFlag) {
    if (excess != Excess::None)
        return; // everything is skipped already
    skipped = depth;
    isFlag = newIsFlag;
    isFlagEmpty = true;
    if (isFlag)
        build([this] { builder.begin(JsonContainer::Array); });
}

/// Called for each value in the skipped container.
void RequestHandler::noteContent() {
    if (isFlag && isFlagEmpty)
        build([this] { builder.scalar({}); });
    isFlagEmpty = false;
}

void RequestHandler::endSkipping() {
    skipped = 0;
    if (isFlag)
        build([this] { builder.end(); });
    isFlag = false;
}

void RequestHandler::drop(Excess newExcess) {
    if (excess != Excess::Nesting)
        excess = newExcess;
    builder = ObjectBuilder();
    isFlag = false;
    skipped = 1; // to the end of the text
}

/// Called behind each value of the envelope.
void RequestHandler::endMember(std::size_t position) {
    if (idStart)
        id = Range{*idStart, position};
    idStart.reset();
}

} // namespace connector::service
