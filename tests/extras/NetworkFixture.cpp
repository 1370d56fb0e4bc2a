#include "NetworkFixture.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <thread>

#include "core/Clock.h"
#include "core/Config.h"
#include "extras/EventNetwork.h"

namespace nettest {

namespace {

const int READ_TIMEOUT_MS = 5000;

}  // namespace

std::string frame(const std::string& payload) {
  const auto size = static_cast<std::int32_t>(payload.size() + vt::MESSAGE_HEADER_SIZE);
  std::string message(reinterpret_cast<const char*>(&size), sizeof(size));
  return message + payload;
}

RawPeer::RawPeer(const std::string& port) {
  fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(port)));
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) close();
}

RawPeer::~RawPeer() {
  close();
}

bool RawPeer::write(const std::string& bytes) const {
  return ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

std::string RawPeer::read(int count) const {
  pollfd poll_fd{fd, POLLIN, 0};
  if (poll(&poll_fd, 1, READ_TIMEOUT_MS) <= 0) return "";
  std::string bytes(static_cast<std::size_t>(count), '\0');
  const ssize_t received = recv(fd, bytes.data(), bytes.size(), 0);
  bytes.resize(received > 0 ? static_cast<std::size_t>(received) : 0);
  return bytes;
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

RawListener::RawListener() : fd(socket(AF_INET, SOCK_STREAM, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
  ::listen(fd, 1);
}

RawListener::~RawListener() {
  ::close(fd);
}

std::string RawListener::port() const {
  sockaddr_in address{};
  socklen_t length = sizeof(address);
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  return std::to_string(ntohs(address.sin_port));
}

NetworkFixture::NetworkFixture() {
  vt::Config::getInstance().setNetworking(true);
  network_manager.startUp();
}

NetworkFixture::~NetworkFixture() {
  network_manager.shutDown();
}

void NetworkFixture::serve() {
  ASSERT_EQ(network_manager.setServer(true, "0"), 0);
  port = network_manager.getServerPort();
  ASSERT_FALSE(port.empty());
}

test::RecordingObject* NetworkFixture::listen(bool read_messages) {
  auto* p_object = new test::RecordingObject;
  EXPECT_EQ(p_object->registerInterest(vt::NETWORK_EVENT), 0);
  p_object->on_event = [this, read_messages](const vt::Event* p_event) {
    const auto& event = dynamic_cast<const vt::EventNetwork&>(*p_event);
    Delivery delivery{event.getLabel(), event.getSocketIndex(), event.getBytes(), ""};
    if (read_messages && event.getLabel() == vt::NETWORK_DATA) {
      std::string buffer(static_cast<std::size_t>(event.getBytes()), '\0');
      const int received =
          network_manager.receive(event.getSocketIndex(), buffer.data(), event.getBytes());
      buffer.resize(received > 0 ? static_cast<std::size_t>(received) : 0);
      delivery.message = buffer;
    }
    deliveries.push_back(delivery);
  };
  return p_object;
}

bool NetworkFixture::pumpUntil(const std::function<bool()>& done) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!done()) {
    if (std::chrono::steady_clock::now() > limit) return false;
    const vt::Clock clock;
    network_manager.processFrame(clock, FRAME_TIME);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

int NetworkFixture::countLabel(int label) const {
  int count = 0;
  for (const Delivery& delivery : deliveries) count += delivery.label == label ? 1 : 0;
  return count;
}

std::vector<std::string> NetworkFixture::payloadsOn(int sock_index) const {
  std::vector<std::string> payloads;
  for (const Delivery& delivery : deliveries) {
    if (delivery.label != vt::NETWORK_DATA || delivery.socket_index != sock_index) continue;
    payloads.push_back(delivery.message.substr(vt::MESSAGE_HEADER_SIZE));
  }
  return payloads;
}

int countOpenFiles() {
  int count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    count++;
  }
  return count;
}

}  // namespace nettest
