#include "NetworkFixture.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <thread>

#include "core/Clock.h"
#include "core/Config.h"
#include "extras/EventNetwork.h"
#include "support/RecordingObject.h"

namespace nettest {

std::string sizeField(int size) {
  const auto field = static_cast<std::int32_t>(size);
  return std::string(reinterpret_cast<const char*>(&field), sizeof(field));
}

std::string frame(const std::string& payload) {
  return sizeField(static_cast<int>(payload.size()) + vt::MESSAGE_HEADER_SIZE) + payload;
}

RawPeer::RawPeer(const std::string& port) : fd(socket(AF_INET, SOCK_STREAM, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) close();
}

bool RawPeer::write(const std::string& bytes) const {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t sent = send(fd, bytes.data() + written, bytes.size() - written, MSG_NOSIGNAL);
    if (sent <= 0) return false;
    written += static_cast<std::size_t>(sent);
  }
  return true;
}

bool RawPeer::sawClose() const {
  pollfd poll_fd{fd, POLLIN, 0};
  char byte = 0;
  return poll(&poll_fd, 1, 0) > 0 && recv(fd, &byte, 1, MSG_PEEK | MSG_DONTWAIT) <= 0;
}

void RawPeer::close() {
  if (fd >= 0) ::close(fd);
  fd = -1;
}

void RawPeer::reset() {
  const linger abort_on_close{1, 0};
  setsockopt(fd, SOL_SOCKET, SO_LINGER, &abort_on_close, sizeof(abort_on_close));
  close();
}

NetworkFixture::NetworkFixture() : was_networking(vt::Config::getInstance().getNetworking()) {
  vt::Config::getInstance().setNetworking(true);
  network_manager.startUp();
  auto* p_listener = new test::RecordingObject;
  EXPECT_EQ(p_listener->registerInterest(vt::NETWORK_EVENT), 0);
  p_listener->on_event = [this](const vt::Event* p_event) {
    const auto& event = dynamic_cast<const vt::EventNetwork&>(*p_event);
    Delivery delivery{event.getLabel(), event.getSocketIndex(), ""};
    if (reading && event.getLabel() == vt::NETWORK_DATA) {
      delivery.message.resize(static_cast<std::size_t>(event.getBytes()));
      const int received = network_manager.receive(event.getSocketIndex(), delivery.message.data(),
                                                   event.getBytes());
      delivery.message.resize(received > 0 ? static_cast<std::size_t>(received) : 0);
    }
    deliveries.push_back(delivery);
  };
}

NetworkFixture::~NetworkFixture() {
  // closeAll() skips every other connection: close them one by one.
  while (network_manager.getNumConnections() > 0) network_manager.close(0);
  network_manager.shutDown();
  network_manager.setMaxConnections(1);
  vt::Config::getInstance().setNetworking(was_networking);
}

void NetworkFixture::serve() {
  ASSERT_EQ(network_manager.setServer(true, "0"), 0);
  port = network_manager.getServerPort();
  ASSERT_FALSE(port.empty());
}

void NetworkFixture::acceptPeers(int count) {
  if (port.empty()) serve();
  for (int i = 0; i < count; i++) {
    const int connections = network_manager.getNumConnections() + 1;
    network_manager.setMaxConnections(connections);
    peers.push_back(std::make_unique<RawPeer>(port));
    ASSERT_TRUE(pumpUntil([&] { return network_manager.getNumConnections() == connections; }));
  }
}

bool NetworkFixture::pumpUntil(const std::function<bool()>& done) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!done()) {
    if (std::chrono::steady_clock::now() > limit) return false;
    network_manager.processFrame(vt::Clock(), 33);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

bool NetworkFixture::logged(const std::string& line) const {
  return engine.logText().find(line) != std::string::npos;
}

int NetworkFixture::countLabel(int label) const {
  return static_cast<int>(
      std::count_if(deliveries.begin(), deliveries.end(),
                    [label](const Delivery& seen) { return seen.label == label; }));
}

std::vector<std::string> NetworkFixture::payloadsOn(int sock_index) const {
  std::vector<std::string> payloads;
  for (const Delivery& delivery : deliveries) {
    if (delivery.label != vt::NETWORK_DATA || delivery.socket_index != sock_index) continue;
    payloads.push_back(delivery.message.substr(
        std::min(delivery.message.size(), static_cast<std::size_t>(vt::MESSAGE_HEADER_SIZE))));
  }
  return payloads;
}

}  // namespace nettest
