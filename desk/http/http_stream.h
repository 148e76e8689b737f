// A connection's bytes, with or without TLS under one type, so that what is built on it is compiled once. For
// http_server.cpp only: it brings the network library along.
#pragma once

#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/role.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <memory>

namespace orv {

// What is called when an operation ends, whatever its type.
class Completion {
 public:
  template <class Handler>
  explicit Completion(Handler handler) : held_(std::make_unique<Kept<Handler>>(std::move(handler))) {}
  Completion(Completion&&) = default;
  Completion& operator=(Completion&&) = default;

  void operator()(boost::system::error_code error, std::size_t size = 0) {
    // What is called may end the connection, and this with it.
    const auto held = std::move(held_);
    held->Call(error, size);
  }

 private:
  struct Held {
    virtual ~Held() = default;
    virtual void Call(boost::system::error_code error, std::size_t size) = 0;
  };
  template <class Handler>
  struct Kept : Held {
    explicit Kept(Handler given) : handler(std::move(given)) {}
    void Call(boost::system::error_code error, std::size_t size) override {
      if constexpr (std::is_invocable_v<Handler, boost::system::error_code, std::size_t>) {
        handler(error, size);
      } else {
        handler(error);
      }
    }
    Handler handler;
  };

  std::unique_ptr<Held> held_;
};

// The certificate and the key that connections show.
class TlsContext;
struct TlsContextDelete {
  void operator()(TlsContext* context) const;
};
using TlsContextPointer = std::unique_ptr<TlsContext, TlsContextDelete>;
// Raises UserError when they can't be used.
TlsContextPointer MakeTlsContext(const std::string& certificate, const std::string& key);

class Stream {
 public:
  using next_layer_type = boost::beast::tcp_stream;
  using executor_type = next_layer_type::executor_type;
  using Pieces = std::array<boost::asio::const_buffer, 8>;

  // `tls` may be null.
  Stream(boost::asio::ip::tcp::socket socket, TlsContext* tls);
  Stream(Stream&&) noexcept;
  ~Stream();

  next_layer_type& next_layer();
  const next_layer_type& next_layer() const;
  executor_type get_executor() { return next_layer().get_executor(); }

  template <class Buffers, class Handler>
  void async_read_some(const Buffers& buffers, Handler&& handler) {
    boost::asio::mutable_buffer first;
    for (auto it = boost::asio::buffer_sequence_begin(buffers);
         it != boost::asio::buffer_sequence_end(buffers) && first.size() == 0; ++it) {
      first = *it;
    }
    Read(first, Completion(std::forward<Handler>(handler)));
  }

  // As many of the buffers as there is room for: it may be less than all.
  template <class Buffers, class Handler>
  void async_write_some(const Buffers& buffers, Handler&& handler) {
    Pieces pieces;
    std::size_t count = 0;
    for (auto it = boost::asio::buffer_sequence_begin(buffers);
         it != boost::asio::buffer_sequence_end(buffers) && count < pieces.size(); ++it) {
      if (boost::asio::const_buffer(*it).size() > 0) pieces[count++] = *it;
    }
    Write(pieces, Completion(std::forward<Handler>(handler)));
  }

  // Done at once without TLS.
  void Handshake(Completion done);
  // Says goodbye and takes what the other end still sends.
  void Teardown(boost::beast::role_type role, Completion done);

 private:
  struct Ends;
  void Read(boost::asio::mutable_buffer buffer, Completion done);
  void Write(const Pieces& pieces, Completion done);

  std::unique_ptr<Ends> ends_;
};

// Found by the WebSocket when a link ends.
template <class Handler>
void async_teardown(boost::beast::role_type role, Stream& stream, Handler&& handler) {
  stream.Teardown(role, Completion(std::forward<Handler>(handler)));
}

}  // namespace orv
