#include "commands/ServeStandardInput.hpp"

#include "display/Output.hpp"

#include <connector/service/messages/LineReader.hpp>
#include <connector/service/messages/MessageService.hpp>
#include <connector/service/messages/ParsedRequest.hpp>

#include <unistd.h>

namespace connector_config {

using connector::service::isBlank;
using connector::service::LineReader;
using connector::service::maxRequestSize;
using connector::service::MessageService;

void serveStandardInput(
    const std::shared_ptr<connector::configuration::Configuration>& configuration) {
    const MessageService service(configuration);
    const auto lines =
        std::make_unique<LineReader>(STDIN_FILENO, maxRequestSize); // has a large buffer
    while (const std::optional<std::string> line = lines->next()) {
        // A line that is too long needs a reply even if the part that was not discarded is blank.
        const bool isTooLong = line->size() > maxRequestSize;
        if (isTooLong || !isBlank(*line))
            writeOutput(service.reply(*line).text + '\n');
    }
}

} // namespace connector_config
