#include "commands/ServeStandardInput.hpp"

#include "display/Output.hpp"
#include <connector/service/messages/LineReader.hpp>
#include <connector/service/messages/MessageService.hpp>
#include <connector/service/messages/RequestText.hpp>

#include <unistd.h>

namespace connector_config {

using connector::service::isBlank;
using connector::service::LineReader;
using connector::service::longestRequest;
using connector::service::MessageService;

void serveStandardInput(
    const std::shared_ptr<connector::configuration::Configuration>& configuration) {
    const MessageService service(configuration);
    const auto lines = std::make_unique<LineReader>(STDIN_FILENO, longestRequest);
    while (const std::optional<std::string> line = lines->next()) {
        const bool isTooLong = line->size() > longestRequest; // and may be anything behind the cut
        if (isTooLong || !isBlank(*line))
            writeOutput(service.reply(*line).text + '\n');
    }
}

} // namespace connector_config
