#include "tests/server/faults/cutting_proxy.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <utility>

namespace qdclgl::server::testing {

namespace {

constexpr int kPause = 100;  // milliseconds between looks whether the proxy ends

int Connected(const std::string& host, const std::string& port) {
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (getaddrinfo(host.c_str(), port.c_str(), &wanted, &found) != 0) return -1;
  const int made = socket(found->ai_family, found->ai_socktype | SOCK_CLOEXEC, 0);
  const bool is_there = connect(made, found->ai_addr, found->ai_addrlen) == 0;
  freeaddrinfo(found);
  if (is_there) return made;
  close(made);
  return -1;
}

void SendAtOnce(int descriptor) {
  const int on = 1;
  setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool Send(int descriptor, const std::string& bytes) {
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t count = send(descriptor, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (count <= 0) return false;
    sent += static_cast<std::size_t>(count);
  }
  return true;
}

// What one side sends, message by message: a letter, four bytes of length, the rest. The first
// messages of a client have no letter.
class Messages {
 public:
  void Add(const char* bytes, std::size_t count) { bytes_.append(bytes, count); }
  // The next whole message.
  std::optional<std::string> Take(bool has_letter) {
    const std::size_t head = has_letter ? 1 : 0;
    if (bytes_.size() < head + 4) return std::nullopt;
    std::uint32_t length = 0;
    std::memcpy(&length, bytes_.data() + head, 4);
    const std::size_t size = head + ntohl(length);
    if (bytes_.size() < size) return std::nullopt;
    std::string message = bytes_.substr(0, size);
    bytes_.erase(0, size);
    return message;
  }
  std::string TakeAll() { return std::exchange(bytes_, ""); }

 private:
  std::string bytes_;
};

// Whether the first message of a client asks for encryption, which is answered with one letter.
bool AsksForEncryption(const std::string& message) {
  constexpr std::uint32_t kTls = 80877103, kGss = 80877104;
  std::uint32_t code = 0;
  if (message.size() == 8) std::memcpy(&code, message.data() + 4, 4);
  return ntohl(code) == kTls || ntohl(code) == kGss;
}

}  // namespace

CuttingProxy::CuttingProxy(const std::string& host, const std::string& port)
    : host_(host), server_port_(port), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
      listen(listener_, 16) != 0 ||
      getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("the proxy can't listen");
  }
  port_ = std::to_string(ntohs(address.sin_port));
  acceptor_ = std::thread([this] { Accept(); });
}

CuttingProxy::~CuttingProxy() {
  ends_ = true;
  acceptor_.join();
  for (std::thread& connection : connections_) connection.join();
  close(listener_);
}

void CuttingProxy::CutAt(int n, Cut cut) {
  has_cut_ = false;
  cut_ = cut;
  requests_ = 0;
  cut_at_ = n;
}

bool CuttingProxy::Mend() {
  cut_at_ = 0;
  until_mend_ = requests_;
  return has_cut_.exchange(false);
}

bool CuttingProxy::IsCutNow() {
  if (++requests_ != cut_at_) return false;
  has_cut_ = true;
  return true;
}

void CuttingProxy::Accept() {
  while (!ends_) {
    pollfd waiting{listener_, POLLIN, 0};
    if (poll(&waiting, 1, kPause) <= 0) continue;
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client >= 0) connections_.emplace_back([this, client] { Serve(client); });
  }
}

void CuttingProxy::Serve(int client) {
  const int server = Connected(host_, server_port_);
  SendAtOnce(client);
  SendAtOnce(server);
  Messages from_client, from_server;
  bool has_begun = false;  // the client's messages have letters
  bool answer_is_lost = false;
  // False ends the connection.
  const auto take_from_client = [&] {
    while (const auto message = from_client.Take(has_begun)) {
      const bool begins = !has_begun && !AsksForEncryption(*message);
      const bool is_request =
          begins || (has_begun && (message->front() == 'Q' || message->front() == 'S'));
      has_begun = has_begun || begins;
      if (is_request && IsCutNow()) {
        if (cut_ == Cut::kBefore) return false;
        answer_is_lost = true;
      }
      if (is_request) std::this_thread::sleep_for(delay_.load());
      if (!Send(server, *message)) return false;
    }
    return true;
  };
  const auto take_from_server = [&] {
    if (!has_begun) return Send(client, from_server.TakeAll());
    while (const auto message = from_server.Take(true)) {
      if (answer_is_lost && message->front() == 'Z') return false;
      if (!answer_is_lost && !Send(client, *message)) return false;
    }
    return true;
  };
  bool goes_on = server >= 0;
  while (goes_on && !ends_) {
    pollfd waiting[] = {{client, POLLIN, 0}, {server, POLLIN, 0}};
    if (poll(waiting, 2, kPause) <= 0) continue;
    for (int side = 0; side < 2 && goes_on; ++side) {
      if (waiting[side].revents == 0) continue;
      char bytes[65536];
      const ssize_t count = recv(waiting[side].fd, bytes, sizeof bytes, 0);
      goes_on = count > 0;
      if (!goes_on) continue;
      (side == 0 ? from_client : from_server).Add(bytes, static_cast<std::size_t>(count));
      goes_on = side == 0 ? take_from_client() : take_from_server();
    }
  }
  close(client);
  if (server >= 0) close(server);
}

}  // namespace qdclgl::server::testing
