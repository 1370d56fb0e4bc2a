#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "extras/NetworkManager.h"
#include "support/HeadlessEngine.h"

namespace nettest {

// A message as it travels: its size (header included), then the payload.
std::string frame(const std::string& payload);
// The first four bytes of a message announcing this size.
std::string sizeField(int size);

// A plain TCP socket on loopback, as a test's remote end: a client of the
// port, or (with an empty port) a listener on a free one.
class RawPeer {
 public:
  explicit RawPeer(const std::string& port);
  ~RawPeer();
  RawPeer(const RawPeer&) = delete;
  RawPeer& operator=(const RawPeer&) = delete;

  // Writes all of it, waiting for room as long as it takes.
  bool write(const std::string& bytes) const;
  // True once the other end has closed this connection.
  bool sawClose() const;
  void close();
  // Closes with a reset instead of an orderly shutdown.
  void reset();
  std::string listeningPort() const;

 private:
  int fd = -1;
};

// What the listening object saw of one network event; for a data event the
// message it then received, header included.
struct Delivery {
  int label;
  int socket_index;
  std::string message;
};

// A headless engine with networking on and the network manager started,
// with a recording listener for "vt-network"; everything it changes in the
// engine is put back afterwards.
class NetworkFixture : public testing::Test {
 protected:
  NetworkFixture();
  ~NetworkFixture() override;

  // Listens on a free port and stores its number in port.
  void serve();
  // Serves and accepts count raw clients as connections 0, 1, ...
  void acceptPeers(int count);
  // Runs the network step of the loop until done() holds; false after 20 s.
  bool pumpUntil(const std::function<bool()>& done);
  int countLabel(int label) const;
  // Payloads of the data events of one connection, in order of arrival.
  std::vector<std::string> payloadsOn(int sock_index) const;
  std::string log() const { return engine.logText(); }
  bool logged(const std::string& line) const { return log().find(line) != std::string::npos; }

  test::HeadlessEngine engine;
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  std::string port;
  std::vector<std::unique_ptr<RawPeer>> peers;
  std::vector<Delivery> deliveries;
  // Whether the listener receives each whole message it is told about.
  bool reading = true;

 private:
  bool was_networking;
};

}  // namespace nettest
