/// What all connections share.
#pragma once

#include <connector/service/HttpOptions.hpp>
#include <connector/service/access/RequestGuard.hpp>
#include <connector/service/events/EventHub.hpp>
#include <connector/service/http/SharedResponses.hpp>
#include <connector/service/http/SharedTexts.hpp>
#include <connector/service/metrics/Metrics.hpp>
#include <connector/service/network/Workers.hpp>
#include <connector/service/network/WriteTurns.hpp>
#include <connector/service/protocol/Router.hpp>

namespace connector::service {

struct ServerContext {
    const HttpLimits& limits;
    const Router& router;
    const RequestGuard& guard;
    Workers& workers;
    WriteTurns& turns;
    EventHub& events;
    SharedResponses& shared;
    SharedTexts& texts;
    Metrics& metrics;
    bool isStopping = false;
};

} // namespace connector::service
