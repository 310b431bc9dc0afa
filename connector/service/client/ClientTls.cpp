#include <connector/service/client/ClientTls.hpp>

#include <connector/service/network/TlsFile.hpp>

namespace connector::service {

namespace ssl = boost::asio::ssl;
using boost::system::error_code;

namespace {

void useCertificate(ssl::context& context, const HttpClientOptions& options) {
    checkTlsFile(options.certificate);
    checkTlsFile(options.key);
    error_code error;
    context.use_certificate_chain_file(options.certificate, error);
    checkTlsResult(error, options.certificate);
    context.use_private_key_file(options.key, ssl::context::pem, error);
    checkTlsResult(error, options.key);
}

} // namespace

std::shared_ptr<ssl::context> makeClientContext(const HttpClientOptions& options) {
    auto context = std::make_shared<ssl::context>(ssl::context::tls_client);
    SSL_CTX_set_min_proto_version(context->native_handle(), TLS1_2_VERSION);
    context->set_verify_mode(ssl::verify_peer);
    error_code error;
    if (options.authority.empty()) {
        context->set_default_verify_paths(error);
    } else {
        checkTlsFile(options.authority);
        context->load_verify_file(options.authority, error);
    }
    checkTlsResult(error, options.authority);
    if (!options.certificate.empty())
        useCertificate(*context, options);
    return context;
}

} // namespace connector::service
