#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "extras/NetworkManager.h"
#include "support/HeadlessEngine.h"

namespace nettest {

// The four bytes announcing a message of this size, header included.
std::string sizeField(int size);
// A message as it travels: its size field, then the payload.
std::string frame(const std::string& payload);

// A plain TCP client on loopback, as a test's remote end.
class RawPeer {
 public:
  explicit RawPeer(const std::string& port);
  ~RawPeer() { close(); }
  RawPeer(const RawPeer&) = delete;
  RawPeer& operator=(const RawPeer&) = delete;

  // Writes all of it, waiting for room as long as it takes.
  bool write(const std::string& bytes) const;
  // True once the other end has closed this connection.
  bool sawClose() const;
  void close();
  // Closes with a reset instead of an orderly shutdown.
  void reset();

 private:
  int fd = -1;
};

// What the listener saw of one network event; for a data event, the message
// it then received.
struct Delivery {
  int label;
  int socket_index;
  std::string message;
};

// A headless engine with networking on, the network manager started and an
// object recording every "vt-network" event; all it changes in the engine's
// singletons is put back afterwards.
class NetworkFixture : public testing::Test {
 protected:
  NetworkFixture();
  ~NetworkFixture() override;

  // Listens on a free port, kept in port.
  void serve();
  // Serves unless already serving, then accepts count more raw clients,
  // appended to peers and to the connections.
  void acceptPeers(int count);
  // Runs the loop's network step until done() holds; false after 20 s.
  bool pumpUntil(const std::function<bool()>& done);
  int countLabel(int label) const;
  // Payloads the listener received on one connection, in order.
  std::vector<std::string> payloadsOn(int sock_index) const;
  bool logged(const std::string& line) const;

  test::HeadlessEngine engine;
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  std::string port;
  std::vector<std::unique_ptr<RawPeer>> peers;
  std::vector<Delivery> deliveries;
  // Whether the listener receives each message it is told about.
  bool reading = true;

 private:
  const bool was_networking;
};

}  // namespace nettest
