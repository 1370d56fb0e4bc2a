#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "extras/NetworkManager.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

namespace nettest {

// Frame time handed to the network step while pumping.
const int FRAME_TIME = 33;

// A message as it travels: its size (header included) in host byte order,
// then the payload.
std::string frame(const std::string& payload);

// A plain TCP client on loopback that sends whatever a test tells it to,
// well-formed or not.
class RawPeer {
 public:
  explicit RawPeer(const std::string& port);
  ~RawPeer();
  RawPeer(const RawPeer&) = delete;
  RawPeer& operator=(const RawPeer&) = delete;

  bool isOpen() const { return fd >= 0; }
  bool write(const std::string& bytes) const;
  // Up to count bytes, waiting at most a few seconds for the first.
  std::string read(int count) const;
  // True once the other end has closed this connection.
  bool sawClose() const;
  void close();
  // Closes with a reset instead of an orderly shutdown.
  void reset();

 private:
  int fd = -1;
};

// A plain listening socket on a free loopback port, to occupy it.
class RawListener {
 public:
  RawListener();
  ~RawListener();
  RawListener(const RawListener&) = delete;
  RawListener& operator=(const RawListener&) = delete;

  std::string port() const;

 private:
  int fd = -1;
};

// What a listening object saw of one network event; for a data event the
// message it then received, header included.
struct Delivery {
  int label;
  int socket_index;
  int bytes;
  std::string message;
};

// A headless engine with networking enabled and the network manager started.
class NetworkFixture : public testing::Test {
 protected:
  NetworkFixture();
  ~NetworkFixture() override;

  // Listens on a free port and stores its number in port.
  void serve();
  // An object registered for "vt-network" that appends every event to
  // deliveries and, when read_messages is set, receives each whole message
  // into a buffer of exactly the announced size.
  test::RecordingObject* listen(bool read_messages = true);
  // Runs the network step until done() holds; false after 10 s without.
  bool pumpUntil(const std::function<bool()>& done);
  int countLabel(int label) const;
  // Payloads of the data events of one connection, in order of arrival.
  std::vector<std::string> payloadsOn(int sock_index) const;

  test::HeadlessEngine engine;
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  std::string port;
  std::vector<Delivery> deliveries;
};

// Open file descriptors of this process.
int countOpenFiles();

}  // namespace nettest
