// Message framing on a live connection: the input is one byte of reader
// behaviour, one byte that picks how the stream is cut, then the bytes a
// peer sends. A raw client on loopback sends them in pieces, the network
// manager raises data events as it would in the loop, and an object reads
// each announced message. Every whole message the stream holds (up to the
// first size out of range) must be delivered once, whole and in order, and
// the peer's hang-up must close the connection after them.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/Config.h"
#include "core/LogManager.h"
#include "extras/EventNetwork.h"
#include "extras/NetworkManager.h"
#include "world/WorldManager.h"

namespace {

// Reader behaviour, from the first input byte.
const std::uint8_t PEEK_FIRST = 1;         // peeks at the size before receiving
const std::uint8_t IGNORE_ONCE = 2;        // lets each message be announced twice
const std::uint8_t RECEIVE_IN_PIECES = 4;  // receives a message in two calls

// Reads every announced message and keeps what it got.
class Reader : public vt::Object {
 public:
  Reader() { registerInterest(vt::NETWORK_EVENT); }

  int eventHandler(const vt::Event* p_event) override {
    const auto& event = static_cast<const vt::EventNetwork&>(*p_event);
    if (event.getLabel() == vt::NETWORK_CLOSE) closed_after = static_cast<int>(messages.size());
    if (event.getLabel() != vt::NETWORK_DATA) return 0;
    if ((behaviour & IGNORE_ONCE) && !ignored) {
      ignored = true;
      return 1;
    }
    ignored = false;
    messages.push_back(receiveMessage(event.getSocketIndex(), event.getBytes()));
    return 1;
  }

  void start(std::uint8_t new_behaviour) {
    behaviour = new_behaviour;
    messages.clear();
    closed_after = -1;
    ignored = false;
  }

  std::uint8_t behaviour = 0;
  std::vector<std::string> messages;
  int closed_after = -1;

 private:
  std::string receiveMessage(int sock_index, int bytes) const {
    vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
    std::string message(static_cast<std::size_t>(bytes), '\0');
    if (behaviour & PEEK_FIRST) {
      std::int32_t size = 0;
      if (network_manager.receive(sock_index, &size, sizeof(size), true) != 4 || size != bytes) {
        std::abort();
      }
    }
    const int first = (behaviour & RECEIVE_IN_PIECES) ? bytes / 2 : bytes;
    const int got = network_manager.receive(sock_index, message.data(), first);
    const int rest = network_manager.receive(sock_index, message.data() + first, bytes - first);
    if (got != first || rest != bytes - first) std::abort();
    return message;
  }

  bool ignored = false;
};

// The whole messages a stream holds, up to the first size out of range.
std::vector<std::string> wholeMessages(const std::string& stream) {
  std::vector<std::string> messages;
  std::size_t at = 0;
  while (stream.size() - at >= vt::MESSAGE_HEADER_SIZE) {
    std::int32_t size = 0;
    std::memcpy(&size, stream.data() + at, sizeof(size));
    if (size < vt::MESSAGE_HEADER_SIZE || size > vt::MAX_MESSAGE_SIZE) break;
    if (stream.size() - at < static_cast<std::size_t>(size)) break;
    messages.push_back(stream.substr(at, static_cast<std::size_t>(size)));
    at += static_cast<std::size_t>(size);
  }
  return messages;
}

// Piece lengths drawn from a seed: small, medium or large pieces, but never
// more than about MOST_PIECES of them, which keeps long inputs fast.
class Cutter {
 public:
  Cutter(std::uint8_t seed, std::size_t stream_size)
      : state(seed * 2654435761u + 1),
        most(std::max(LARGEST[seed % 4],
                      static_cast<std::uint32_t>(2 * stream_size / MOST_PIECES + 1))) {}
  std::size_t next() {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return 1 + state % most;
  }

 private:
  static constexpr std::uint32_t LARGEST[4] = {3, 64, 1500, 40000};
  static constexpr std::size_t MOST_PIECES = 64;
  std::uint32_t state;
  std::uint32_t most;
};

class Harness {
 public:
  Harness() {
    vt::Config& config = vt::Config::getInstance();
    config.setHeadless(true);
    config.setNetworking(true);
    config.setLogFile("/dev/null");
    unsetenv("VANTOR_LOG");
    vt::LogManager::getInstance().startUp();
    vt::WorldManager::getInstance().startUp();
    network_manager.startUp();
    if (network_manager.setServer(true, "0") != 0) std::abort();
    port = static_cast<std::uint16_t>(std::stoi(network_manager.getServerPort()));
    p_reader = new Reader;
  }

  void run(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return;
    Reader& reader = *p_reader;
    reader.start(data[0]);
    const std::string stream(reinterpret_cast<const char*>(data) + 2, size - 2);
    Cutter cutter(data[1], stream.size());
    const int client = connectClient();
    for (std::size_t at = 0; at < stream.size() && network_manager.getNumConnections() > 0;) {
      const std::size_t piece = std::min(cutter.next(), stream.size() - at);
      if (!sendPiece(client, stream.data() + at, piece)) break;
      at += piece;
    }
    shutdown(client, SHUT_WR);
    drainUntilClosed();
    ::close(client);
    const std::vector<std::string> expected = wholeMessages(stream);
    if (reader.messages != expected) std::abort();
    if (reader.closed_after != static_cast<int>(expected.size())) std::abort();
  }

 private:
  int connectClient() {
    const int client = socket(AF_INET, SOCK_STREAM, 0);
    // Each piece leaves at once instead of waiting for the last one's
    // acknowledgement.
    const int no_delay = 1;
    setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &no_delay, sizeof(no_delay));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    if (connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        network_manager.accept() != 0) {
      std::abort();
    }
    return client;
  }

  // Sends the piece, letting the manager read whenever the socket is full,
  // then runs data events until none is raised; false once the manager has
  // closed the connection.
  bool sendPiece(int client, const char* p_bytes, std::size_t count) {
    for (std::size_t sent = 0; sent < count;) {
      const ssize_t now = send(client, p_bytes + sent, count - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
      if (now > 0) sent += static_cast<std::size_t>(now);
      if (now < 0 && errno != EAGAIN) return false;
      raiseDataEvents();
      if (network_manager.getNumConnections() == 0) return false;
    }
    return true;
  }

  void raiseDataEvents() {
    while (network_manager.getNumConnections() > 0 && network_manager.genDataEvents(0) > 0) {
    }
  }

  // The peer has hung up: the manager must see it within a few seconds.
  void drainUntilClosed() {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (network_manager.getNumConnections() > 0) {
      if (std::chrono::steady_clock::now() > limit) std::abort();
      raiseDataEvents();
    }
  }

  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  // Lives as long as the process, in the world like any object.
  Reader* p_reader = nullptr;
  std::uint16_t port = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Harness harness;
  harness.run(data, size);
  return 0;
}
