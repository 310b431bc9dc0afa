/// Builds a request from the parts of its text.
#pragma once

#include <connector/service/messages/ObjectBuilder.hpp>
#include <connector/service/messages/ParsedRequest.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace connector::service {

struct RequestPart; // how much of a value is built

/// Builds what messages read, and skips everything else. If a request is nested too deeply or has
/// too many elements, it drops what it has built and skips the rest, because the text must still be
/// checked and have its id found.
class RequestHandler : public JsonHandler {
public:
    RequestHandler();

    void begin(JsonContainer container) override;
    void end(std::size_t position) override;
    void name(std::string_view text, std::size_t position) override;
    void scalar(const JsonScalar& value, std::size_t position) override;

    /// @param text  the text that was read
    ParsedRequest result(const std::string& text) const;

private:
    struct Range {
        std::size_t start;
        std::size_t end;
    };

    template <typename Step>
    void build(Step step);
    void beginPart(JsonContainer container);
    void skipContainer(bool isFlag);
    void noteContent();
    void endSkipping();
    void drop(ParsedRequest::Excess newExcess);
    void endMember(std::size_t position);

    ObjectBuilder builder;
    std::vector<const RequestPart*> parts; // of the containers that are built and not ended
    const RequestPart* next;               // of the next value, where it is not skipped
    std::size_t depth = 0;
    std::size_t skipped = 0;  // depth of the container that is skipped; 0 for none
    bool isFlag = false;      // the skipped container is built as an array that is empty or not
    bool isFlagEmpty = false; // nothing has been found in it yet
    std::optional<std::size_t> idStart; // behind the name, while the value is read
    std::optional<Range> id;            // from behind the name to the end of the value
    ParsedRequest::Excess excess = ParsedRequest::Excess::None;
};

} // namespace connector::service
