// Framing on a live connection: the first input byte picks the cuts and the reader's behaviour, the
// rest is what a raw peer on loopback sends. Every whole message up to the first size out of range
// must be received once, in order, and the peer's hang-up must close the connection after them.
#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "FuzzEngine.h"
#include "core/Config.h"
#include "extras/EventNetwork.h"
#include "extras/NetworkManager.h"

namespace {

vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();

struct Seen {
  bool skip_every_other = false, skipped = false;
  std::vector<std::string> messages;
  int closed_after = -1;
} seen;

// Peeks, then receives each announced message in two halves; with
// skip_every_other it leaves each one unread once, to be announced again.
class Reader : public vt::Object {
 public:
  Reader() { registerInterest(vt::NETWORK_EVENT); }
  int eventHandler(const vt::Event* p_event) override {
    const auto& event = static_cast<const vt::EventNetwork&>(*p_event);
    if (event.getLabel() == vt::NETWORK_CLOSE) seen.closed_after = int(seen.messages.size());
    if (event.getLabel() != vt::NETWORK_DATA) return 0;
    if ((seen.skipped = seen.skip_every_other && !seen.skipped)) return 1;
    const int bytes = event.getBytes(), half = bytes / 2, sock_index = event.getSocketIndex();
    std::string message(static_cast<std::size_t>(bytes), '\0');
    if (network_manager.receive(sock_index, message.data(), 4, true) != 4 ||
        network_manager.receive(sock_index, message.data(), half) != half ||
        network_manager.receive(sock_index, message.data() + half, bytes - half) != bytes - half) {
      std::abort();
    }
    seen.messages.push_back(message);
    return 1;
  }
};

// The reader lives as long as the process, in the world like any object.
vt::Object* startEngine() {
  fuzz::startEngine();
  vt::Config::getInstance().setNetworking(true);
  network_manager.startUp();
  if (network_manager.setServer(true, "0") != 0) std::abort();
  return new Reader;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const vt::Object* const p_reader = startEngine();
  if (!p_reader || size < 1) return 0;
  const std::string stream(reinterpret_cast<const char*>(data) + 1, size - 1);
  seen = Seen{(data[0] & 1) != 0, false, {}, -1};
  // Pieces of at most 3 to 40000 bytes, never many more than 64 of them.
  const std::uint32_t largest[4] = {3, 64, 1500, 40000};
  const std::size_t most = std::max<std::size_t>(largest[data[0] / 2 % 4], stream.size() / 32 + 1);
  std::uint32_t state = data[0] * 2654435761u + 1;

  const int client = socket(AF_INET, SOCK_STREAM, 0);
  const int no_delay = 1;  // each piece leaves at once
  setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &no_delay, sizeof(no_delay));
  const auto port = static_cast<std::uint16_t>(std::stoi(network_manager.getServerPort()));
  const sockaddr_in address{AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
  if (connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
      network_manager.accept() != 0) {
    std::abort();
  }
  // Sends piece by piece, letting the manager read whenever the socket is
  // full, then hangs up, until the manager has closed the connection.
  for (std::size_t at = 0, end = 0; network_manager.getNumConnections() > 0;) {
    if (at == end && at < stream.size()) {
      state ^= state << 13, state ^= state >> 17, state ^= state << 5;
      end = std::min(stream.size(), at + 1 + state % most);
    }
    const ssize_t sent =
        at < end ? send(client, stream.data() + at, end - at, MSG_NOSIGNAL | MSG_DONTWAIT) : 0;
    if (sent < 0 && errno != EAGAIN) at = end = stream.size();
    at += static_cast<std::size_t>(std::max<ssize_t>(sent, 0));
    if (at == stream.size()) shutdown(client, SHUT_WR);
    while (network_manager.getNumConnections() > 0 && network_manager.genDataEvents(0) > 0) {
    }
  }
  close(client);
  std::vector<std::string> expected;
  std::int32_t length = 0;
  for (std::size_t at = 0; stream.size() - at >= vt::MESSAGE_HEADER_SIZE; at += length) {
    std::memcpy(&length, stream.data() + at, sizeof(length));
    if (length < vt::MESSAGE_HEADER_SIZE || length > vt::MAX_MESSAGE_SIZE ||
        stream.size() - at < static_cast<std::size_t>(length)) {
      break;
    }
    expected.push_back(stream.substr(at, static_cast<std::size_t>(length)));
  }
  if (seen.messages != expected || seen.closed_after != int(expected.size())) std::abort();
  return 0;
}
