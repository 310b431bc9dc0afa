/// The operations of the service, and what they work on.
#pragma once

#include <connector/service/access/Policy.hpp>
#include <connector/service/messages/MessageService.hpp>
#include <connector/service/metrics/Metrics.hpp>
#include <connector/service/text/Secrets.hpp>

#include <connector/configuration/ConfigurationImpl.hpp>

namespace connector::service {

class Router;

/// Everything in it may be used from any thread, and outlives the operations.
struct Services {
    configuration::ConfigurationImpl& configuration;
    const MessageService& messages;
    const Policy& policy;
    const Secrets& secrets;
    Metrics& metrics;
};

// Each of these adds operations to a router.
void addOptionOperations(Router& router, const Services& services);
void addMessageOperation(Router& router, const Services& services);
void addWatchOperation(Router& router);
void addHealthOperations(Router& router);
void addMetricsOperation(Router& router, const Services& services);

/// The description covers the operations that are there when it is added.
void addDescriptionOperation(Router& router);

} // namespace connector::service
