#include <connector/etcd/detail/Channel.hpp>

#include <connector/etcd/detail/Settings.hpp>

#include <grpc/support/log.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace connector::etcd::detail {

namespace {

std::string optionalContent(const std::filesystem::path& path) {
    return path.empty() ? std::string() : contentOf(path);
}

std::shared_ptr<grpc::ChannelCredentials> credentialsOf(const Endpoint& endpoint,
                                                        const TlsFiles& files) {
    if (!endpoint.isSecure)
        return grpc::InsecureChannelCredentials();
    grpc::SslCredentialsOptions options;
    options.pem_root_certs = optionalContent(files.authorities);
    options.pem_cert_chain = optionalContent(files.certificate);
    options.pem_private_key = optionalContent(files.key);
    return grpc::SslCredentials(options);
}

grpc::ChannelArguments channelArguments() {
    grpc::ChannelArguments arguments;
    arguments.SetMaxReceiveMessageSize(INT_MAX);
    arguments.SetMaxSendMessageSize(INT_MAX); // the engine has its own limit, and names it
    arguments.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
    arguments.SetInt(GRPC_ARG_ENABLE_RETRIES, 0); // nothing is repeated without a word
    arguments.SetInt(GRPC_ARG_ENABLE_HTTP_PROXY, 0);
    arguments.SetInt(GRPC_ARG_SERVICE_CONFIG_DISABLE_RESOLUTION, 1);
    return arguments;
}

/// A library does not write to standard error; failures are in the status. Whoever looks for the
/// cause of one in gRPC sets the variable.
void silenceGrpc() {
    [[maybe_unused]] static const bool isDone = [] {
        if (std::getenv("GRPC_VERBOSITY") == nullptr)
            gpr_set_log_verbosity(static_cast<gpr_log_severity>(GPR_LOG_SEVERITY_ERROR + 1));
        return true;
    }();
}

bool has(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

} // namespace

std::shared_ptr<grpc::Channel> makeChannel(const Endpoint& endpoint, const TlsFiles& files) {
    silenceGrpc();
    return grpc::CreateCustomChannel(endpoint.target, credentialsOf(endpoint, files),
                                     channelArguments());
}

std::string causeOf(const grpc::Status& status) {
    if (status.error_code() == grpc::StatusCode::DEADLINE_EXCEEDED)
        return "no answer in time";
    std::string text = status.error_message();
    if (text.empty())
        text = "the call failed with code " + std::to_string(status.error_code());
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x20; }, ' ');
    return text;
}

bool wantsToken(const grpc::Status& status) {
    const std::string text = status.error_message();
    if (status.error_code() == grpc::StatusCode::UNAUTHENTICATED)
        return true;
    return status.error_code() == grpc::StatusCode::INVALID_ARGUMENT &&
           (has(text, "user name is empty") || has(text, "revision of auth store is old"));
}

bool isRefusal(const grpc::Status& status) {
    switch (status.error_code()) {
    case grpc::StatusCode::INVALID_ARGUMENT:
    case grpc::StatusCode::NOT_FOUND:
    case grpc::StatusCode::ALREADY_EXISTS:
    case grpc::StatusCode::PERMISSION_DENIED:
    case grpc::StatusCode::UNAUTHENTICATED:
    case grpc::StatusCode::RESOURCE_EXHAUSTED:
    case grpc::StatusCode::FAILED_PRECONDITION:
    case grpc::StatusCode::OUT_OF_RANGE:
    case grpc::StatusCode::UNIMPLEMENTED:
        return true;
    default:
        return false;
    }
}

} // namespace connector::etcd::detail
