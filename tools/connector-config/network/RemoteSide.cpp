#include "network/RemoteSide.hpp"

#include <connector/service/HttpClient.hpp>
#include <connector/service/text/Secrets.hpp>

namespace connector_config {

using connector::service::Secrets;

ComparedOptions readRemoteSide(const connector::service::HttpClientOptions& service) {
    ComparedOptions result{connector::service::HttpClient(service).list(), {}, true};
    for (const Option& option : result.options) { // the service has masked secrets
        const auto* const text = boost::get<std::string>(&option.value);
        if (text != nullptr && *text == Secrets::mask)
            result.masked.insert(option.key);
    }
    return result;
}

} // namespace connector_config
