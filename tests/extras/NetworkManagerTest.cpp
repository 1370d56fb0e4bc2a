#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "NetworkFixture.h"
#include "core/Clock.h"
#include "extras/EventNetwork.h"
#include "extras/NetworkManager.h"

using nettest::frame;
using nettest::RawPeer;
using vt::NETWORK_ACCEPT;
using vt::NETWORK_CLOSE;
using vt::NETWORK_CONNECT;
using vt::NETWORK_DATA;

namespace {

class NetworkManagerTest : public nettest::NetworkFixture {
 protected:
  // Three raw clients, accepted as connections 0, 1 and 2.
  void acceptThree() {
    serve();
    listen();
    network_manager.setMaxConnections(3);
    for (auto& p_peer : peers) {
      p_peer = std::make_unique<RawPeer>(port);
      const int accepted = countLabel(NETWORK_ACCEPT) + 1;
      ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_ACCEPT) == accepted; }));
    }
    ASSERT_EQ(network_manager.getNumConnections(), 3);
  }

  int sendText(int sock_index, const std::string& payload) {
    const std::string message = frame(payload);
    return network_manager.send(sock_index, message.data(), static_cast<int>(message.size()));
  }

  // In a child process: connects, sends every line and waits for each to
  // come back; the exit status tells the parent how far it got.
  [[noreturn]] void runClient(const std::vector<std::string>& lines) {
    network_manager.setServer(false);
    if (network_manager.connect("127.0.0.1", port) != 0) _exit(2);
    for (const std::string& line : lines) {
      if (sendText(0, line) != 0) _exit(3);
    }
    if (!pumpUntil([&] { return payloadsOn(0).size() == lines.size(); })) _exit(4);
    _exit(payloadsOn(0) == lines ? 0 : 5);
  }

  std::unique_ptr<RawPeer> peers[3];
};

}  // namespace

TEST_F(NetworkManagerTest, ServerAndClientInOneProcessExchangeMessagesOnce) {
  serve();
  listen();
  network_manager.setMaxConnections(2);
  EXPECT_TRUE(network_manager.isServer());
  ASSERT_EQ(network_manager.connect("127.0.0.1", port), 0);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_ACCEPT) == 1; }));
  ASSERT_EQ(network_manager.getNumConnections(), 2);
  EXPECT_EQ(deliveries[0].label, NETWORK_CONNECT);
  EXPECT_EQ(deliveries[0].socket_index, 0);
  EXPECT_EQ(deliveries[1].label, NETWORK_ACCEPT);
  EXPECT_EQ(deliveries[1].socket_index, 1);

  ASSERT_EQ(sendText(0, "hello"), 0);
  ASSERT_EQ(sendText(1, "welcome, client"), 0);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 2; }));
  EXPECT_EQ(payloadsOn(1), std::vector<std::string>{"hello"});
  EXPECT_EQ(payloadsOn(0), std::vector<std::string>{"welcome, client"});
  // Read messages are gone: further frames raise nothing new.
  for (int i = 0; i < 5; i++) network_manager.processFrame(vt::Clock(), nettest::FRAME_TIME);
  EXPECT_EQ(countLabel(NETWORK_DATA), 2);
  EXPECT_EQ(network_manager.isData(0), 0);
  EXPECT_EQ(network_manager.isData(1), 0);
}

TEST_F(NetworkManagerTest, ServerAndClientInTwoProcesses) {
  serve();
  listen();
  const std::vector<std::string> lines = {"one", "two", std::string(1000, 'x'), "four"};
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) runClient(lines);
  // Registered after the recording object, so each message has been read
  // into deliveries when this one echoes it.
  auto* p_echo = new test::RecordingObject;
  ASSERT_EQ(p_echo->registerInterest(vt::NETWORK_EVENT), 0);
  p_echo->on_event = [this](const vt::Event* p_event) {
    const auto& event = dynamic_cast<const vt::EventNetwork&>(*p_event);
    if (event.getLabel() != NETWORK_DATA) return;
    const std::string& message = deliveries.back().message;
    network_manager.send(event.getSocketIndex(), message.data(), static_cast<int>(message.size()));
  };
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1; }));
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(payloadsOn(0), lines);
  EXPECT_EQ(countLabel(NETWORK_ACCEPT), 1);
  EXPECT_EQ(network_manager.getNumConnections(), 0);
}

TEST_F(NetworkManagerTest, DataEventOnlyWhenTheWholeMessageWaits) {
  serve();
  listen();
  RawPeer peer(port);
  ASSERT_TRUE(pumpUntil([&] { return network_manager.getNumConnections() == 1; }));
  const std::string message = frame("abcdef");
  ASSERT_EQ(message.size(), 10u);
  // Two bytes: not even the size is there yet.
  ASSERT_TRUE(peer.write(message.substr(0, 2)));
  ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == 2; }));
  EXPECT_EQ(network_manager.genDataEvents(0), 0);
  ASSERT_TRUE(peer.write(message.substr(2, 7)));
  ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == 9; }));
  EXPECT_EQ(network_manager.genDataEvents(0), 0);
  EXPECT_EQ(countLabel(NETWORK_DATA), 0);
  ASSERT_TRUE(peer.write(message.substr(9)));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 1; }));
  EXPECT_EQ(deliveries.back().bytes, 10);
  EXPECT_EQ(deliveries.back().message, message);
  EXPECT_EQ(network_manager.genDataEvents(0), 0);
}

TEST_F(NetworkManagerTest, UnreadMessageRepeatsUntilTheBudgetEnds) {
  serve();
  listen(false);
  RawPeer peer(port);
  ASSERT_TRUE(pumpUntil([&] { return network_manager.getNumConnections() == 1; }));
  ASSERT_TRUE(peer.write(frame("nobody reads me")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) > 0; }));
  EXPECT_NE(engine.logText().find("GameManager::run(): Warning! Residual network data.\n"),
            std::string::npos);
  // With no budget at all there is exactly one pass.
  deliveries.clear();
  EXPECT_EQ(network_manager.processFrame(vt::Clock(), 0), 1);
  EXPECT_EQ(countLabel(NETWORK_DATA), 1);
}

TEST_F(NetworkManagerTest, ReadMessagesLeaveNoResidue) {
  serve();
  listen();
  RawPeer peer(port);
  ASSERT_TRUE(pumpUntil([&] { return network_manager.getNumConnections() == 1; }));
  std::string burst;
  for (int i = 0; i < 5; i++) burst += frame("message " + std::to_string(i));
  ASSERT_TRUE(peer.write(burst));
  ASSERT_TRUE(
      pumpUntil([&] { return network_manager.isData(0) == static_cast<int>(burst.size()); }));
  // A second of budget: one frame takes all five, then a pass finds nothing.
  EXPECT_EQ(network_manager.processFrame(vt::Clock(), 5000), 5);
  EXPECT_EQ(payloadsOn(0).back(), "message 4");
  EXPECT_EQ(engine.logText().find("Residual network data"), std::string::npos);
}

TEST_F(NetworkManagerTest, ConnectionLimitRefusesTheSecondClient) {
  serve();
  listen();
  EXPECT_EQ(network_manager.getMaxConnections(), 1);
  EXPECT_EQ(network_manager.accept(), -1);
  RawPeer first(port);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_ACCEPT) == 1; }));
  RawPeer second(port);
  ASSERT_TRUE(pumpUntil([&] { return second.sawClose(); }));
  EXPECT_EQ(network_manager.getNumConnections(), 1);
  EXPECT_FALSE(first.sawClose());
  network_manager.setMaxConnections(2);
  RawPeer third(port);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_ACCEPT) == 2; }));
  EXPECT_EQ(deliveries.back().socket_index, 1);
  // No longer a server: accepting is an error.
  EXPECT_EQ(network_manager.setServer(false), 0);
  EXPECT_FALSE(network_manager.isServer());
  EXPECT_EQ(network_manager.accept(), -2);
  EXPECT_NE(engine.logText().find("NetworkManager::accept(): Error! Not setup as server."),
            std::string::npos);
}

TEST_F(NetworkManagerTest, CloseRenumbersLaterConnections) {
  acceptThree();
  EXPECT_EQ(network_manager.close(0), 0);
  EXPECT_EQ(deliveries.back().label, NETWORK_CLOSE);
  EXPECT_EQ(deliveries.back().socket_index, 0);
  EXPECT_EQ(network_manager.getNumConnections(), 2);
  ASSERT_TRUE(pumpUntil([&] { return peers[0]->sawClose(); }));
  ASSERT_TRUE(peers[1]->write(frame("from B")));
  ASSERT_TRUE(peers[2]->write(frame("from C")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 2; }));
  EXPECT_EQ(payloadsOn(0), std::vector<std::string>{"from B"});
  EXPECT_EQ(payloadsOn(1), std::vector<std::string>{"from C"});
  EXPECT_EQ(network_manager.close(2), -1);
  EXPECT_EQ(network_manager.close(-1), -1);
  EXPECT_NE(engine.logText().find("NetworkManager::close(): sock_index (-1) out of range."),
            std::string::npos);
}

TEST_F(NetworkManagerTest, CloseAllLeavesTheMiddleOfThree) {
  acceptThree();
  EXPECT_EQ(network_manager.closeAll(), 0);
  ASSERT_EQ(network_manager.getNumConnections(), 1);
  EXPECT_EQ(countLabel(NETWORK_CLOSE), 2);
  ASSERT_TRUE(pumpUntil([&] { return peers[0]->sawClose() && peers[2]->sawClose(); }));
  EXPECT_FALSE(peers[1]->sawClose());
  ASSERT_TRUE(peers[1]->write(frame("still here")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 1; }));
  EXPECT_EQ(payloadsOn(0), std::vector<std::string>{"still here"});
}

TEST_F(NetworkManagerTest, PeerThatLeavesIsClosedAndSendingToItIsSafe) {
  serve();
  listen();
  RawPeer peer(port);
  ASSERT_TRUE(pumpUntil([&] { return network_manager.getNumConnections() == 1; }));
  peer.close();
  // The first send may still reach the kernel; one of the next fails with
  // the peer gone, reported instead of killing the process.
  int result = 0;
  for (int i = 0; i < 20 && result == 0; i++) result = sendText(0, "anyone there?");
  EXPECT_EQ(result, -1);
  const std::string log = engine.logText();
  EXPECT_NE(log.find("NetworkManager::send(): Error! send() returned:\n"), std::string::npos);
  EXPECT_TRUE(log.find("\t32 - Broken pipe") != std::string::npos ||
              log.find("\t104 - Connection reset by peer") != std::string::npos);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1; }));
  EXPECT_EQ(network_manager.getNumConnections(), 0);
}

TEST_F(NetworkManagerTest, FailuresAreLoggedWithTheSystemErrorText) {
  // A port whose listener has just gone: connecting is refused.
  serve();
  EXPECT_EQ(network_manager.setServer(false), 0);
  EXPECT_EQ(network_manager.connect("127.0.0.1", port), -1);
  EXPECT_EQ(network_manager.connect("127.0.0.1", "no-such-service"), -1);
  // A port that another socket listens on cannot be bound.
  const nettest::RawListener other;
  EXPECT_EQ(network_manager.setServer(true, other.port()), -1);
  EXPECT_FALSE(network_manager.isServer());
  char buffer[8] = {};
  EXPECT_EQ(network_manager.send(0, buffer, 1), -1);
  EXPECT_EQ(network_manager.receive(0, buffer, 1), -1);
  EXPECT_EQ(network_manager.isData(3), -1);
  EXPECT_FALSE(network_manager.isConnected(0));
  EXPECT_FALSE(network_manager.isConnected(-1));
  const std::string log = engine.logText();
  EXPECT_NE(log.find("NetworkManager::connect(): Error! connect() returned:\n"), std::string::npos);
  EXPECT_NE(log.find("\t111 - Connection refused\n"), std::string::npos);
  EXPECT_NE(log.find("NetworkManager::connect(): Error! getaddrinfo() returned:\n"),
            std::string::npos);
  EXPECT_NE(log.find("NetworkManager::setServer(): Error! bind() returned:\n"), std::string::npos);
  EXPECT_NE(log.find("\t98 - Address already in use\n"), std::string::npos);
  EXPECT_NE(log.find("NetworkManager::send(): Error! Socket 0 not connected. Unable to send."),
            std::string::npos);
  EXPECT_NE(
      log.find("NetworkManager::receive(): Error! Socket 0 not connected. Unable to receive."),
      std::string::npos);
  EXPECT_NE(log.find("NetworkManager::isData(): Error! Sock index 3 not connected."),
            std::string::npos);
}

TEST_F(NetworkManagerTest, EventsAndRegistrations) {
  EXPECT_EQ(network_manager.startUp(), -1);
  auto* p_object = new test::RecordingObject;
  for (const std::string& type : {vt::NETWORK_EVENT, vt::KEYBOARD_NETWORK_EVENT,
                                  vt::MOUSE_NETWORK_EVENT, vt::CUSTOM_NETWORK_EVENT}) {
    EXPECT_EQ(p_object->registerInterest(type), 0) << type;
  }
  EXPECT_FALSE(network_manager.isValid(vt::STEP_EVENT));
  vt::Event custom;
  custom.setType(vt::CUSTOM_NETWORK_EVENT);
  EXPECT_EQ(network_manager.onEvent(&custom), 1);
  // Unregistering from the custom type is sent to the world manager, which
  // never had it, so the network manager keeps delivering it.
  EXPECT_EQ(p_object->unregisterInterest(vt::CUSTOM_NETWORK_EVENT), -1);
  EXPECT_EQ(network_manager.onEvent(&custom), 1);
  EXPECT_EQ(p_object->unregisterInterest(vt::NETWORK_EVENT), 0);
  const vt::EventNetwork closed(vt::NETWORK_CLOSE, 4, 0);
  EXPECT_EQ(network_manager.onEvent(&closed), 0);

  vt::EventNetwork event(NETWORK_DATA, 2, 64);
  EXPECT_EQ(event.getType(), vt::NETWORK_EVENT);
  EXPECT_EQ(event.setLabel(4), -1);
  EXPECT_EQ(event.setLabel(-1), -1);
  EXPECT_EQ(event.getLabel(), NETWORK_DATA);
  EXPECT_EQ(event.setLabel(NETWORK_ACCEPT), 0);
  EXPECT_EQ(event.getLabel(), NETWORK_ACCEPT);
  const std::string log = engine.logText();
  EXPECT_NE(log.find("NetworkManager::startup(): Warning! NetworkManager already started."),
            std::string::npos);
  EXPECT_NE(log.find("NetworkManager::isValid(): Error! NetworkManager does not handle vt-step."),
            std::string::npos);
  EXPECT_NE(log.find("EventNetwork::setLabel(): Undefined type (4).\n"), std::string::npos);
  EXPECT_NE(log.find("EventNetwork::setLabel(): Undefined type (-1).\n"), std::string::npos);
}
