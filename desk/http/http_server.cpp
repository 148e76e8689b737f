#include "desk/http/http_server.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <deque>
#include <map>
#include <optional>
#include <set>

#include "desk/http/http_stream.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using asio::ip::tcp;
using beast::error_code;

constexpr uint32_t kMaxHeader = 16 << 10;
constexpr uint64_t kMaxBody = 64 << 10;
constexpr std::size_t kMaxMessage = 1 << 20;
// A large body is taken in pieces, and may come no slower than this.
constexpr std::size_t kPiece = 64 << 10;
constexpr uint64_t kLeastRate = 32 << 10;  // bytes a second
// What may wait for a browser that doesn't read, beside the message that is under way.
constexpr std::size_t kMaxUnsent = 32 << 20;
constexpr std::chrono::seconds kGoodbye{2};

// A request whose body is read by whoever wants it.
using Head = http::request<http::buffer_body>;

// A connection between two requests, which may be cut at any time.
class Waiting {
 public:
  virtual ~Waiting() = default;
  virtual void Cut() = 0;
};

// What all connections share.
struct Network {
  Network(HttpServer::Options given, HttpHandler& desk) : options(std::move(given)), handler(desk) {}

  HttpServer::Options options;
  HttpHandler& handler;
  std::size_t connections = 0;
  struct Share {
    std::size_t all = 0, unknown = 0;
  };
  std::map<std::string, Share> shares;
  bool stopping = false;
  std::set<Waiting*> waiting;
  // Last: what it still holds when it goes looks at the others.
  asio::io_context io{1};
};

// Counts a connection, and for whom it is, for as long as it lives.
class Counted {
 public:
  explicit Counted(Network& network) : network_(network) { ++network_.connections; }
  ~Counted() {
    Leave();
    if (--network_.connections == 0 && network_.stopping) network_.io.stop();
  }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  // False when whoever asks has as many as he may: the connection is then nobody's and must go.
  bool Belongs(const Asker& asker) {
    if (counted_ && asker.network == asker_.network && asker.known == asker_.known) return true;
    Leave();
    asker_ = asker;
    if (asker.network.empty()) return true;
    Network::Share& share = network_.shares[asker.network];
    ++share.all;
    if (!asker.known) ++share.unknown;
    counted_ = true;
    return share.all <= network_.options.max_of_one &&
           (asker.known || share.unknown <= network_.options.max_unknown_of_one);
  }

 private:
  void Leave() {
    if (!std::exchange(counted_, false)) return;
    const auto share = network_.shares.find(asker_.network);
    if (!asker_.known) --share->second.unknown;
    if (--share->second.all == 0) network_.shares.erase(share);
  }

  Network& network_;
  Asker asker_;
  bool counted_ = false;
};

HttpRequest Plain(const Head& message, std::string address) {
  HttpRequest request;
  request.method = std::string(message.method_string());
  const std::string target(message.target());
  const std::size_t mark = target.find('?');
  request.path = target.substr(0, mark);
  if (mark != std::string::npos) request.query = target.substr(mark + 1);
  request.address = std::move(address);
  for (const auto& field : message) {
    std::string& value = request.headers[Lower(std::string(field.name_string()))];
    if (!value.empty()) value += ", ";
    value += std::string(field.value());
  }
  return request;
}

http::response<http::string_body> Message(HttpResponse response, const Head& to) {
  http::response<http::string_body> message(static_cast<http::status>(response.status), to.version());
  if (!response.type.empty()) message.set(http::field::content_type, response.type);
  for (const auto& [name, value] : response.headers) message.insert(name, value);
  message.keep_alive(to.keep_alive());
  const std::size_t size = response.body.size();
  if (to.method() != http::verb::head) message.body() = std::move(response.body);
  if (response.status != 304) message.content_length(size);
  return message;
}

// A body comes as it is or in chunks; of what else its sender understands by it the desk can't know the end.
bool BodyUnderstood(const Head& message) {
  const auto [begin, end] = message.equal_range(http::field::transfer_encoding);
  if (begin == end) return true;
  return std::next(begin) == end && message.version() == 11 &&
         message.count(http::field::content_length) == 0 && beast::iequals(begin->value(), "chunked");
}

// A WebSocket on a stream.
class SocketLink : public Link, public std::enable_shared_from_this<SocketLink> {
 public:
  SocketLink(std::shared_ptr<Counted> counted, Network& network, Stream stream)
      : counted_(std::move(counted)), network_(network), socket_(std::move(stream)) {}

  void Accept(Head message, HttpRequest request) {
    beast::get_lowest_layer(socket_).expires_never();
    socket_.set_option(
        websocket::stream_base::timeout{network_.options.request_time, std::chrono::seconds(60), true});
    // A small window: a session costs 72 KB instead of 237.
    websocket::permessage_deflate deflate;
    deflate.server_enable = true;
    deflate.server_max_window_bits = 11;
    deflate.client_max_window_bits = 11;
    deflate.memLevel = 4;
    socket_.set_option(deflate);
    socket_.read_message_max(kMaxMessage);
    socket_.text(true);
    message_ = std::move(message);
    request_ = std::move(request);
    socket_.async_accept(message_, [self = shared_from_this()](error_code error) {
      if (error) return;
      self->open_ = true;
      self->network_.handler.Opened(self, self->request_);
      self->Read();
    });
  }

  void Send(std::string text) override {
    if (!open_ || closing_) return;
    unsent_ += text.size();
    queue_.push_back(std::move(text));
    if (queue_.size() > 1 && unsent_ - queue_.front().size() > kMaxUnsent) {
      Drop();
    } else if (queue_.size() == 1) {
      Write();
    }
  }

  void Close() override {
    if (!open_ || closing_) return;
    closing_ = true;
    if (queue_.empty()) SayGoodbye();
  }

 private:
  void Read() {
    socket_.async_read(buffer_, [self = shared_from_this()](error_code error, std::size_t) {
      if (error || self->closing_) {
        self->Ended();
        return;
      }
      if (!self->socket_.got_text()) {
        self->Close();
        self->Ended();
        return;
      }
      std::string text = beast::buffers_to_string(self->buffer_.data());
      // A large message's memory isn't kept.
      self->buffer_ = beast::flat_buffer();
      self->network_.handler.Message(self, std::move(text), [self] {
        if (self->open_) self->Read();
      });
    });
  }

  void Write() {
    socket_.async_write(asio::buffer(queue_.front()),
                        [self = shared_from_this()](error_code error, std::size_t) {
                          if (!self->open_) return;
                          if (error) {
                            self->Ended();
                            return;
                          }
                          self->unsent_ -= self->queue_.front().size();
                          self->queue_.pop_front();
                          if (!self->queue_.empty()) {
                            self->Write();
                          } else if (self->closing_) {
                            self->SayGoodbye();
                          }
                        });
  }

  void SayGoodbye() {
    socket_.async_close(websocket::close_code::normal,
                        [self = shared_from_this()](error_code) { self->Ended(); });
  }

  void Drop() {
    beast::get_lowest_layer(socket_).socket().close();
    Ended();
  }

  void Ended() {
    if (!std::exchange(open_, false)) return;
    network_.handler.Closed(shared_from_this());
  }

  std::shared_ptr<Counted> counted_;
  Network& network_;
  websocket::stream<Stream> socket_;
  Head message_;
  HttpRequest request_;
  beast::flat_buffer buffer_;
  std::deque<std::string> queue_;
  std::size_t unsent_ = 0;
  bool open_ = false;
  bool closing_ = false;
};

// A connection that speaks HTTP.
class Connection : public Waiting, public std::enable_shared_from_this<Connection> {
 public:
  Connection(Network& network, Stream stream, std::string address)
      : counted_(std::make_shared<Counted>(network)),
        network_(network),
        stream_(std::move(stream)),
        address_(std::move(address)) {}
  ~Connection() override { network_.waiting.erase(this); }

  void Cut() override { beast::get_lowest_layer(stream_).cancel(); }

  void Start() {
    HttpRequest nothing;
    nothing.address = address_;
    if (!counted_->Belongs(network_.handler.Identify(nothing))) return;
    Deadline(network_.options.request_time);
    stream_.Handshake(Completion([self = shared_from_this()](error_code error) {
      if (!error) self->Wait();
    }));
  }

 private:
  void Deadline(std::chrono::milliseconds time) { beast::get_lowest_layer(stream_).expires_after(time); }

  // Until the next request begins.
  void Wait() {
    if (network_.stopping) return;
    Deadline(first_ ? network_.options.request_time : network_.options.keep_time);
    if (buffer_.size() > 0) {
      Read();
      return;
    }
    network_.waiting.insert(this);
    stream_.async_read_some(buffer_.prepare(4096),
                            [self = shared_from_this()](error_code error, std::size_t size) {
                              self->network_.waiting.erase(self.get());
                              if (error) return;
                              self->buffer_.commit(size);
                              self->Read();
                            });
  }

  // The deadline holds for the whole request, however slowly it comes.
  void Read() {
    first_ = false;
    Deadline(network_.options.request_time);
    parser_.emplace();
    parser_->header_limit(kMaxHeader);
    // Known once it is known what becomes of the body.
    parser_->body_limit(boost::none);
    http::async_read_header(stream_, buffer_, *parser_,
                            [self = shared_from_this()](error_code error, std::size_t) {
                              if (!self->Failed(error)) self->Got();
                            });
  }

  // Whether the request is lost; it is answered where that can be.
  bool Failed(error_code error) {
    if (!error) return false;
    if (error == http::error::body_limit || error == http::error::header_limit) {
      Refuse(error == http::error::body_limit ? 413 : 431);
    } else if (error == http::error::end_of_stream || error == beast::error::timeout) {
      // Nobody is there to be answered.
    } else if (error.category() == http::make_error_code(http::error::bad_method).category()) {
      // What isn't HTTP.
      Refuse(400);
    }
    return true;
  }

  // The header is there.
  void Got() {
    message_ = parser_->get();
    request_ = Plain(message_, address_);
    if (message_.count(http::field::host) > 1 || request_.path.empty() || request_.path[0] != '/' ||
        !BodyUnderstood(message_)) {
      Refuse(400);
    } else if (!counted_->Belongs(network_.handler.Identify(request_))) {
      Refuse(429);
    } else if (websocket::is_upgrade(message_)) {
      Upgrade();
    } else {
      Receive();
    }
  }

  void Upgrade() {
    HttpResponse answer = network_.handler.Upgrade(request_);
    if (answer.status != 101) {
      message_.keep_alive(false);
      Answer(std::move(answer));
      return;
    }
    // A browser says nothing before the door is open, and what was read with the request would be lost.
    if (buffer_.size() > 0 || !parser_->is_done()) {
      Refuse(400);
      return;
    }
    auto link = std::make_shared<SocketLink>(counted_, network_, std::move(stream_));
    link->Accept(std::move(message_), std::move(request_));
  }

  // --- The body.

  void Receive() {
    const auto size = parser_->content_length();
    BodyPlan plan = network_.handler.Receive(request_, size ? std::optional<uint64_t>(*size) : std::nullopt);
    if (plan.refusal) {
      message_.keep_alive(false);
      Answer(std::move(*plan.refusal));
      return;
    }
    sink_ = std::move(plan.sink);
    if (sink_ != nullptr) {
      Deadline(network_.options.request_time + std::chrono::seconds(size.value_or(0) / kLeastRate));
    } else if (size && *size > kMaxBody) {
      Refuse(413);
      return;
    } else {
      parser_->body_limit(kMaxBody);
    }
    Body();
  }

  void Body() {
    if (parser_->is_done()) {
      Whole();
      return;
    }
    const uint64_t left = parser_->content_length_remaining().value_or(kPiece);
    piece_.resize(std::min<uint64_t>(left, kPiece));
    auto& body = parser_->get().body();
    body.data = piece_.data();
    body.size = piece_.size();
    body.more = true;
    http::async_read(stream_, buffer_, *parser_, [self = shared_from_this()](error_code error, std::size_t) {
      if (error == http::error::need_buffer) error = {};
      if (!self->Failed(error)) self->Piece();
    });
  }

  void Piece() {
    piece_.resize(piece_.size() - parser_->get().body().size);
    if (sink_ == nullptr) {
      request_.body += piece_;
      Body();
      return;
    }
    sink_->Take(std::move(piece_), [self = shared_from_this()](bool kept) {
      if (kept) {
        self->Body();
      } else {
        self->Refuse(507);
      }
    });
    piece_ = {};
  }

  void Whole() {
    if (const auto sink = std::exchange(sink_, nullptr)) {
      Answer(sink->Whole());
      return;
    }
    beast::get_lowest_layer(stream_).expires_never();
    network_.handler.Handle(
        request_, [self = shared_from_this()](HttpResponse response) { self->Answer(std::move(response)); });
  }

  void Refuse(int status) {
    sink_ = nullptr;
    message_ = {};
    message_.version(11);
    message_.keep_alive(false);
    Answer({status, "", "", {}});
  }

  void Answer(HttpResponse response) {
    Deadline(network_.options.request_time);
    network_.handler.Finish(response);
    answer_ = Message(std::move(response), message_);
    const bool empty = message_.method() == http::verb::head || answer_.result_int() == 304;
    serializer_.emplace(answer_);
    const auto done = [self = shared_from_this()](error_code error, std::size_t) {
      if (error) return;
      if (self->answer_.keep_alive()) {
        self->Wait();
      } else {
        self->HangUp();
      }
    };
    if (empty) {
      http::async_write_header(stream_, *serializer_, done);
    } else {
      http::async_write(stream_, *serializer_, done);
    }
  }

  void HangUp() {
    stream_.Teardown(beast::role_type::server, Completion([self = shared_from_this()](error_code) {}));
  }

  std::shared_ptr<Counted> counted_;
  Network& network_;
  Stream stream_;
  std::string address_;
  beast::flat_buffer buffer_;
  std::optional<http::request_parser<http::buffer_body>> parser_;
  Head message_;
  HttpRequest request_;
  std::shared_ptr<BodySink> sink_;
  std::string piece_;
  http::response<http::string_body> answer_;
  std::optional<http::response_serializer<http::string_body>> serializer_;
  bool first_ = true;
};

}  // namespace

struct HttpServer::Parts : Network {
  Parts(const Options& given, HttpHandler& desk) : Network(given, desk), acceptor(io), pause(io) {
    if (!options.certificate.empty()) tls = MakeTlsContext(options.certificate, options.key);
    Listen();
  }

  void Listen() {
    error_code error;
    const auto address = asio::ip::make_address(options.address, error);
    if (error) throw UserError("\"" + options.address + "\" não é um endereço da rede.");
    const tcp::endpoint endpoint(address, static_cast<uint16_t>(options.port));
    acceptor.open(endpoint.protocol(), error);
    if (!error) acceptor.set_option(tcp::acceptor::reuse_address(true), error);
    if (!error) acceptor.bind(endpoint, error);
    if (!error) acceptor.listen(asio::socket_base::max_listen_connections, error);
    if (error) {
      throw UserError("A porta " + std::to_string(options.port) + " de " + options.address +
                      " não pode ser usada: " + error.message() + ".");
    }
  }

  void Accept() {
    acceptor.async_accept([this](error_code error, tcp::socket socket) {
      if (stopping) return;
      if (error) {
        // Out of descriptors: it gets better when somebody leaves.
        pause.expires_after(std::chrono::milliseconds(100));
        pause.async_wait([this](error_code) {
          if (!stopping) Accept();
        });
        return;
      }
      if (connections < options.max_connections) Begin(std::move(socket));
      Accept();
    });
  }

  void Begin(tcp::socket socket) {
    error_code error;
    const tcp::endpoint remote = socket.remote_endpoint(error);
    if (error) return;
    socket.set_option(tcp::no_delay(true), error);
    asio::ip::address from = remote.address();
    if (from.is_v6() && from.to_v6().is_v4_mapped())
      from = asio::ip::make_address_v4(asio::ip::v4_mapped, from.to_v6());
    std::string address = from.to_string();
    std::make_shared<Connection>(*this, Stream(std::move(socket), tls.get()), std::move(address))->Start();
  }

  TlsContextPointer tls;
  tcp::acceptor acceptor;
  asio::steady_timer pause;
};

HttpServer::HttpServer(const Options& options, HttpHandler& handler)
    : parts_(std::make_unique<Parts>(options, handler)) {
  parts_->Accept();
}

HttpServer::~HttpServer() {
  // What is still held back isn't waited for any more.
  parts_->stopping = false;
}

int HttpServer::Port() const { return parts_->acceptor.local_endpoint().port(); }

void HttpServer::Run() {
  const auto work = asio::make_work_guard(parts_->io);
  parts_->io.run();
}

void HttpServer::Post(std::function<void()> work) { asio::post(parts_->io, std::move(work)); }

void HttpServer::After(std::chrono::milliseconds time, std::function<void()> work) {
  auto timer = std::make_shared<asio::steady_timer>(parts_->io, time);
  timer->async_wait([timer, work = std::move(work)](error_code error) {
    if (!error) work();
  });
}

void HttpServer::Stop() {
  parts_->stopping = true;
  error_code ignored;
  parts_->acceptor.close(ignored);
  if (parts_->connections == 0) {
    parts_->io.stop();
    return;
  }
  for (Waiting* connection : parts_->waiting) connection->Cut();
  After(kGoodbye, [this] { parts_->io.stop(); });
}

}  // namespace orv
