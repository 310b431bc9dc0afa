#include <connector/service/network/TlsContext.hpp>

#include <connector/service/network/TlsFile.hpp>

#include <stdexcept>

namespace connector::service {

namespace ssl = boost::asio::ssl;
using boost::system::error_code;

std::shared_ptr<ssl::context> makeServerContext(const TlsFiles& files) {
    auto context = std::make_shared<ssl::context>(ssl::context::tls_server);
    SSL_CTX_set_min_proto_version(context->native_handle(), TLS1_2_VERSION);
    checkTlsFile(files.certificate);
    checkTlsFile(files.key);
    error_code error;
    context->use_certificate_chain_file(files.certificate, error);
    checkTlsResult(error, files.certificate);
    context->use_private_key_file(files.key, ssl::context::pem, error);
    checkTlsResult(error, files.key);
    if (SSL_CTX_check_private_key(context->native_handle()) != 1)
        throw std::runtime_error("TLS key does not fit the certificate: " + files.key);
    if (!files.clientAuthority.empty()) {
        checkTlsFile(files.clientAuthority);
        context->load_verify_file(files.clientAuthority, error);
        checkTlsResult(error, files.clientAuthority);
        context->set_verify_mode(ssl::verify_peer | ssl::verify_fail_if_no_peer_cert);
    }
    // A client could otherwise resume a session of a certificate that is not valid any more.
    SSL_CTX_set_session_cache_mode(context->native_handle(), SSL_SESS_CACHE_OFF);
    SSL_CTX_set_options(context->native_handle(), SSL_OP_NO_TICKET | SSL_OP_NO_RENEGOTIATION);
    return context;
}

} // namespace connector::service
