#include <connector/configuration/service/ConfigurationServiceProviderImpl.hpp>

#include <connector/configuration/service/ConfigurationKeysResponse.hpp>
#include <connector/configuration/service/ConfigurationOptionResponse.hpp>

#include <stdexcept>
#include <utility>

namespace connector::configuration {

namespace {

template <typename Response, typename... Arguments>
ConfigurationServiceProvider::Reply reply(Arguments&&... arguments) {
    return makeReadyFuture<std::unique_ptr<Message>>(
        std::make_unique<Response>(std::forward<Arguments>(arguments)...));
}

/// A handler may be called directly, with a null pointer.
template <typename Request>
const Request& given(const std::unique_ptr<Request>& request) {
    if (!request)
        throw std::invalid_argument("A handler needs a request.");
    return *request;
}

} // namespace

ConfigurationServiceProviderImpl::ConfigurationServiceProviderImpl(
    std::shared_ptr<Configuration> newConfiguration)
    : configuration(std::move(newConfiguration)) {
    if (!configuration)
        throw std::invalid_argument("A configuration service needs a configuration.");
}

ConfigurationServiceProviderImpl::~ConfigurationServiceProviderImpl() = default;

void ConfigurationServiceProviderImpl::onStart() {
}
void ConfigurationServiceProviderImpl::onStop() {
}

ConfigurationServiceProvider::Reply
ConfigurationServiceProviderImpl::handle(std::unique_ptr<ConfigurationGet>&& request, Address&&,
                                         std::shared_ptr<Context>&&) {
    const std::string& key = given(request).key;
    if (!configuration->has(key).get())
        return reply<ConfigurationOptionResponse>();
    return reply<ConfigurationOptionResponse>(configuration->getOption(key).get());
}

ConfigurationServiceProvider::Reply
ConfigurationServiceProviderImpl::handle(std::unique_ptr<ConfigurationSet>&& request, Address&&,
                                         std::shared_ptr<Context>&&) {
    const ConfigurationSet& set = given(request);
    OptionValue answer = set.source.empty()
                             ? configuration->set(set.key, set.value).get()
                             : configuration->set(set.key, set.value, set.source).get();
    return reply<ConfigurationOptionResponse>(Option{set.key, set.source, std::move(answer)});
}

ConfigurationServiceProvider::Reply
ConfigurationServiceProviderImpl::handle(std::unique_ptr<ConfigurationKeys>&& request, Address&&,
                                         std::shared_ptr<Context>&&) {
    given(request);
    return reply<ConfigurationKeysResponse>(configuration->keys().get());
}

ConfigurationServiceProvider::Reply
ConfigurationServiceProviderImpl::handle(std::unique_ptr<AddPropertyFileSource>&& request,
                                         Address&&, std::shared_ptr<Context>&&) {
    const AddPropertyFileSource& add = given(request);
    configuration->addPropertyFileSource(add.name, add.group, add.order, add.readOnly, add.path)
        .get();
    return reply<Message>();
}

} // namespace connector::configuration
