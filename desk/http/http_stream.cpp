#include "desk/http/http_stream.h"

#include <boost/asio/ssl.hpp>
#include <boost/beast/websocket/teardown.hpp>
#include <optional>

#include "toolkit/error.h"

namespace orv {

namespace asio = boost::asio;
namespace beast = boost::beast;

class TlsContext {
 public:
  asio::ssl::context context{asio::ssl::context::tls_server};
};

void TlsContextDelete::operator()(TlsContext* context) const { delete context; }

TlsContextPointer MakeTlsContext(const std::string& certificate, const std::string& key) {
  TlsContextPointer tls(new TlsContext);
  try {
    tls->context.set_options(asio::ssl::context::default_workarounds | asio::ssl::context::no_tlsv1 |
                             asio::ssl::context::no_tlsv1_1 | asio::ssl::context::single_dh_use);
    SSL_CTX_set_options(tls->context.native_handle(), SSL_OP_NO_COMPRESSION | SSL_OP_NO_RENEGOTIATION);
    // Of TLS 1.2 only what keeps past talks secret when the key is lost, and is safe by itself; TLS 1.3 has
    // nothing else.
    if (SSL_CTX_set_cipher_list(tls->context.native_handle(), "ECDHE+AESGCM:ECDHE+CHACHA20:!aNULL:!PSK") != 1)
      throw UserError("A biblioteca de TLS não tem as cifras de que a mesa precisa.");
    tls->context.use_certificate_chain_file(certificate);
    tls->context.use_private_key_file(key, asio::ssl::context::pem);
  } catch (const boost::system::system_error& e) {
    throw UserError("O certificado ou a sua chave não pode ser usado: " + e.code().message() + ".");
  }
  return tls;
}

struct Stream::Ends {
  Ends(asio::ip::tcp::socket socket, TlsContext* context) : plain(std::move(socket)) {
    if (context != nullptr) tls.emplace(plain, context->context);
  }

  beast::tcp_stream plain;
  std::optional<asio::ssl::stream<beast::tcp_stream&>> tls;
};

Stream::Stream(asio::ip::tcp::socket socket, TlsContext* tls)
    : ends_(std::make_unique<Ends>(std::move(socket), tls)) {}
Stream::Stream(Stream&&) noexcept = default;
Stream::~Stream() = default;

Stream::next_layer_type& Stream::next_layer() { return ends_->plain; }
const Stream::next_layer_type& Stream::next_layer() const { return ends_->plain; }

void Stream::Read(asio::mutable_buffer buffer, Completion done) {
  if (ends_->tls) {
    ends_->tls->async_read_some(buffer, std::move(done));
  } else {
    ends_->plain.async_read_some(buffer, std::move(done));
  }
}

void Stream::Write(const Pieces& pieces, Completion done) {
  if (ends_->tls) {
    ends_->tls->async_write_some(pieces, std::move(done));
  } else {
    ends_->plain.async_write_some(pieces, std::move(done));
  }
}

void Stream::Handshake(Completion done) {
  if (ends_->tls) {
    ends_->tls->async_handshake(asio::ssl::stream_base::server, std::move(done));
  } else {
    done({});
  }
}

void Stream::Teardown(beast::role_type role, Completion done) {
  if (ends_->tls) {
    ends_->tls->async_shutdown(std::move(done));
  } else {
    beast::async_teardown(role, ends_->plain, std::move(done));
  }
}

}  // namespace orv
