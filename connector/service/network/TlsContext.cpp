#include <connector/service/network/TlsContext.hpp>

#include <stdexcept>
#include <string>

namespace connector::service {

namespace ssl = boost::asio::ssl;
using boost::system::error_code;

namespace {

void check(const error_code& error, const std::string& path) {
    if (error)
        throw std::runtime_error("TLS file could not be used: " + path + ": " + error.message());
}

} // namespace

std::shared_ptr<ssl::context> makeServerContext(const TlsFiles& files) {
    auto context = std::make_shared<ssl::context>(ssl::context::tls_server);
    SSL_CTX_set_min_proto_version(context->native_handle(), TLS1_2_VERSION);
    error_code error;
    context->use_certificate_chain_file(files.certificate, error);
    check(error, files.certificate);
    context->use_private_key_file(files.key, ssl::context::pem, error);
    check(error, files.key);
    if (SSL_CTX_check_private_key(context->native_handle()) != 1)
        throw std::runtime_error("TLS key does not fit the certificate: " + files.key);
    if (!files.clientAuthority.empty()) {
        context->load_verify_file(files.clientAuthority, error);
        check(error, files.clientAuthority);
        context->set_verify_mode(ssl::verify_peer | ssl::verify_fail_if_no_peer_cert);
    }
    // A client could otherwise resume a session of a certificate that is not valid any more.
    SSL_CTX_set_session_cache_mode(context->native_handle(), SSL_SESS_CACHE_OFF);
    SSL_CTX_set_options(context->native_handle(), SSL_OP_NO_TICKET | SSL_OP_NO_RENEGOTIATION);
    return context;
}

} // namespace connector::service
