#include "fleet/EtcdSources.hpp"

#include "display/Output.hpp"
#include "fleet/EtcdOptions.hpp"
#include "fleet/StateLines.hpp"
#include "values/WrongArguments.hpp"

#include <connector/etcd/EtcdSource.hpp>

#include <memory>
#include <stdexcept>

namespace connector_config {

using connector::configuration::ConfigurationImpl;
using connector::etcd::EtcdSource;
using connector::etcd::Status;

namespace {

std::shared_ptr<EtcdSource> openSource(const EtcdArgument& argument) {
    try {
        return std::make_shared<EtcdSource>(etcdOptionsOf(argument));
    } catch (const std::invalid_argument& error) {
        throw WrongArguments(error.what());
    }
}

/// A source that has begun with a cache file has its revision.
void tellEmptyBeginning(const EtcdArgument& argument, const EtcdSource& source) {
    if (argument.start != EtcdArgument::Start::Cached || source.status().revision > 0)
        return;
    printNotice(argument.name + ": begins empty, without a cache file" +
                (argument.cacheFile.empty() ? "" : ": " + argument.cacheFile));
}

} // namespace

void addEtcd(ConfigurationImpl& configuration, const EtcdArgument& argument, bool tellsStates) {
    const std::shared_ptr<EtcdSource> source = openSource(argument);
    tellEmptyBeginning(argument, *source);
    if (tellsStates)
        source->onStatus(
            [lines = std::make_shared<StateLines>(argument.name)](const Status& status) {
                if (const auto line = lines->next(status))
                    printNotice(*line);
            });
    configuration.addSource(argument.name, argument.group, argument.order, true, source).get();
}

} // namespace connector_config
