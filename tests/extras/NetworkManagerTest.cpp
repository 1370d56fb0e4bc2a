#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <string>
#include <vector>

#include "NetworkFixture.h"
#include "core/Clock.h"
#include "extras/EventNetwork.h"
#include "extras/NetworkManager.h"
#include "support/RecordingObject.h"

using nettest::frame;
using nettest::RawPeer;
using nettest::sizeField;
using vt::NETWORK_ACCEPT;
using vt::NETWORK_CLOSE;
using vt::NETWORK_CONNECT;
using vt::NETWORK_DATA;

namespace {

class NetworkManagerTest : public nettest::NetworkFixture {
 protected:
  int sendText(int sock_index, const std::string& payload) {
    const std::string message = frame(payload);
    return network_manager.send(sock_index, message.data(), static_cast<int>(message.size()));
  }
};

int countOpenFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return static_cast<int>(std::distance(begin(files), end(files)));
}

// Message number i of a run, padded to the size it travels at.
std::string numbered(int i, int size) {
  std::string payload = std::to_string(i) + ":";
  payload.resize(static_cast<std::size_t>(size - vt::MESSAGE_HEADER_SIZE), char('a' + i % 26));
  return payload;
}

}  // namespace

TEST_F(NetworkManagerTest, ServerAndClientInOneProcessExchangeMessagesOnce) {
  serve();
  network_manager.setMaxConnections(2);
  EXPECT_TRUE(network_manager.isServer());
  ASSERT_EQ(network_manager.connect("127.0.0.1", port), 0);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_ACCEPT) == 1; }));
  ASSERT_EQ(deliveries.size(), 2u);
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
  for (int i = 0; i < 5; i++) network_manager.processFrame(vt::Clock(), 33);
  EXPECT_EQ(countLabel(NETWORK_DATA), 2);
  EXPECT_EQ(network_manager.isData(0), 0);
  EXPECT_EQ(network_manager.isData(1), 0);
}

TEST_F(NetworkManagerTest, DataEventOnlyWhenTheWholeMessageWaitsAndPeekingKeepsIt) {
  acceptPeers(1);
  const std::string message = frame("abcdef");
  // Ten bytes in three pieces: no event until the last one is in.
  for (const auto& [from, count] : {std::pair{0, 2}, {2, 7}}) {
    ASSERT_TRUE(peers[0]->write(message.substr(from, count)));
    ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == from + count; }));
    EXPECT_EQ(network_manager.genDataEvents(0), 0);
  }
  EXPECT_EQ(countLabel(NETWORK_DATA), 0);
  ASSERT_TRUE(peers[0]->write(message.substr(9)));
  ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == 10; }));
  std::string peeked(6, '\0');
  EXPECT_EQ(network_manager.receive(0, peeked.data(), 6, true), 6);
  EXPECT_EQ(peeked, message.substr(0, 6));
  // Counts no single call may handle are refused and consume nothing.
  EXPECT_EQ(network_manager.receive(0, peeked.data(), -1), -1);
  EXPECT_EQ(network_manager.receive(0, peeked.data(), vt::MAX_MESSAGE_SIZE + 1), -1);
  EXPECT_EQ(network_manager.send(0, peeked.data(), -3), -1);
  EXPECT_EQ(network_manager.isData(0), 10);
  EXPECT_EQ(network_manager.genDataEvents(0), 1);
  EXPECT_EQ(deliveries.back().message, message);
  EXPECT_EQ(network_manager.genDataEvents(0), 0);
  for (const char* line : {"NetworkManager::receive(): Error! Cannot receive -1 bytes (0 to "
                           "32768 allowed).\n",
                           "NetworkManager::receive(): Error! Cannot receive 32769 bytes",
                           "NetworkManager::send(): Error! Cannot send -3 bytes"}) {
    EXPECT_TRUE(logged(line)) << line;
  }
}

TEST_F(NetworkManagerTest, UnreadMessageIsAnnouncedAgainUntilTheBudgetEnds) {
  acceptPeers(1);
  std::string burst;
  for (int i = 0; i < 5; i++) burst += frame("message " + std::to_string(i));
  ASSERT_TRUE(peers[0]->write(burst));
  ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == int(burst.size()); }));
  // Read as announced: one frame takes all five and leaves nothing.
  EXPECT_EQ(network_manager.processFrame(vt::Clock(), 5000), 5);
  EXPECT_EQ(payloadsOn(0).back(), "message 4");
  EXPECT_FALSE(logged("Residual network data"));

  reading = false;
  ASSERT_TRUE(peers[0]->write(frame("nobody reads me")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) > 6; }));
  EXPECT_TRUE(logged("GameManager::run(): Warning! Residual network data.\n"));
  // With no budget at all there is exactly one pass, and it is the same
  // message again.
  const int announced = countLabel(NETWORK_DATA);
  EXPECT_EQ(network_manager.processFrame(vt::Clock(), 0), 1);
  EXPECT_EQ(countLabel(NETWORK_DATA), announced + 1);
  EXPECT_EQ(network_manager.isData(0), 19);
}

TEST_F(NetworkManagerTest, FastPeerHasEveryMessageDeliveredInOrderThenItsClose) {
  struct Run {
    int size;
    int count;
  };
  for (const Run run : {Run{vt::MAX_MESSAGE_SIZE, 300}, Run{1024, 10000}}) {
    if (port.empty()) serve();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      // Back to back as fast as the socket takes them, then hang up.
      RawPeer peer(port);
      for (int i = 0; i < run.count; i++) {
        if (!peer.write(frame(numbered(i, run.size)))) _exit(1);
      }
      _exit(0);
    }
    deliveries.clear();
    const bool closed = pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1; });
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    ASSERT_TRUE(closed) << run.size << "-byte messages: " << payloadsOn(0).size() << " of "
                        << run.count << " arrived, then nothing";
    const std::vector<std::string> payloads = payloadsOn(0);
    ASSERT_EQ(int(payloads.size()), run.count) << run.size;
    for (int i = 0; i < run.count; i++) ASSERT_EQ(payloads[i], numbered(i, run.size)) << i;
    EXPECT_EQ(deliveries.back().label, NETWORK_CLOSE);
  }
}

TEST_F(NetworkManagerTest, ConnectionLimitRefusesTheSecondClient) {
  serve();
  EXPECT_EQ(network_manager.getMaxConnections(), 1);
  EXPECT_EQ(network_manager.accept(), -1);
  RawPeer first(port);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_ACCEPT) == 1; }));
  RawPeer second(port);
  ASSERT_TRUE(pumpUntil([&] { return second.sawClose(); }));
  EXPECT_EQ(network_manager.getNumConnections(), 1);
  EXPECT_FALSE(first.sawClose());
  // No longer a server: accepting is an error.
  EXPECT_EQ(network_manager.setServer(false), 0);
  EXPECT_FALSE(network_manager.isServer());
  EXPECT_EQ(network_manager.accept(), -2);
  EXPECT_TRUE(logged("NetworkManager::accept(): Error! Not setup as server."));
}

TEST_F(NetworkManagerTest, CloseRenumbersLaterConnectionsAndCloseAllSkipsEveryOther) {
  acceptPeers(3);
  EXPECT_EQ(network_manager.close(0), 0);
  EXPECT_EQ(deliveries.back().label, NETWORK_CLOSE);
  EXPECT_EQ(deliveries.back().socket_index, 0);
  ASSERT_TRUE(peers[1]->write(frame("from B")));
  ASSERT_TRUE(peers[2]->write(frame("from C")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 2; }));
  EXPECT_EQ(payloadsOn(0), std::vector<std::string>{"from B"});
  EXPECT_EQ(payloadsOn(1), std::vector<std::string>{"from C"});
  EXPECT_EQ(network_manager.close(2), -1);
  EXPECT_TRUE(logged("NetworkManager::close(): sock_index (2) out of range."));

  // Three again, then closeAll: the middle one stays open.
  peers.push_back(std::make_unique<RawPeer>(port));
  ASSERT_TRUE(pumpUntil([&] { return network_manager.getNumConnections() == 3; }));
  EXPECT_EQ(network_manager.closeAll(), 0);
  ASSERT_EQ(network_manager.getNumConnections(), 1);
  ASSERT_TRUE(pumpUntil([&] { return peers[1]->sawClose() && peers[3]->sawClose(); }));
  EXPECT_FALSE(peers[2]->sawClose());
}

TEST_F(NetworkManagerTest, PeerThatLeavesIsClosedAndSendingToItIsSafe) {
  acceptPeers(1);
  peers[0]->close();
  // The first sends may still reach the kernel; a later one fails with the
  // peer gone, reported instead of killing the process.
  int result = 0;
  for (int i = 0; i < 20 && result == 0; i++) result = sendText(0, "anyone there?");
  EXPECT_EQ(result, -1);
  EXPECT_TRUE(logged("NetworkManager::send(): Error! send() returned:\n"));
  EXPECT_TRUE(logged("\t32 - Broken pipe") || logged("\t104 - Connection reset by peer"));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1; }));
  EXPECT_EQ(network_manager.getNumConnections(), 0);
}

TEST_F(NetworkManagerTest, MisuseAndFailuresAreRefusedWithTheirLogLines) {
  EXPECT_EQ(network_manager.startUp(), -1);
  // A port whose listener has just gone: connecting is refused.
  serve();
  EXPECT_EQ(network_manager.setServer(false), 0);
  EXPECT_EQ(network_manager.connect("127.0.0.1", port), -1);
  EXPECT_EQ(network_manager.connect("127.0.0.1", "no-such-service"), -1);
  char buffer[8] = {};
  EXPECT_EQ(network_manager.send(0, buffer, 1), -1);
  EXPECT_EQ(network_manager.receive(0, buffer, 1), -1);
  EXPECT_EQ(network_manager.isData(3), -1);
  EXPECT_FALSE(network_manager.isConnected(-1));
  // Every network event type is the network manager's to route.
  auto* p_object = new test::RecordingObject;
  for (const std::string& type :
       {vt::KEYBOARD_NETWORK_EVENT, vt::MOUSE_NETWORK_EVENT, vt::CUSTOM_NETWORK_EVENT}) {
    EXPECT_EQ(p_object->registerInterest(type), 0) << type;
    vt::Event event;
    event.setType(type);
    EXPECT_EQ(network_manager.onEvent(&event), 1) << type;
  }
  EXPECT_FALSE(network_manager.isValid(vt::STEP_EVENT));
  for (const char* line : {
           "NetworkManager::startup(): Warning! NetworkManager already started.",
           "NetworkManager::connect(): Error! connect() returned:\n",
           "\t111 - Connection refused\n",
           "NetworkManager::connect(): Error! getaddrinfo() returned:\n",
           "NetworkManager::send(): Error! Socket 0 not connected. Unable to send.",
           "NetworkManager::receive(): Error! Socket 0 not connected. Unable to receive.",
           "NetworkManager::isData(): Error! Sock index 3 not connected.",
           "NetworkManager::isValid(): Error! NetworkManager does not handle vt-step.",
       }) {
    EXPECT_TRUE(logged(line)) << line;
  }
}

// Hostile peers come after a well-behaved one, connection 0, so closing them
// never moves it; none leaves a file open behind it.
TEST_F(NetworkManagerTest, BadSizesAndCutMessagesCloseOnlyTheOffenderAfterItsWholeMessages) {
  acceptPeers(1);
  const int open_files = countOpenFiles();
  enum Ending { STAYS, CLOSES, RESETS };
  struct Case {
    std::string bytes;
    Ending ending;
    int whole_messages;
    int refused_size;  // when the peer stays
  };
  const std::string whole = frame("whole one");
  for (const Case& hostile_case : {
           Case{sizeField(0), STAYS, 0, 0},
           Case{sizeField(-5) + "junk", STAYS, 0, -5},
           Case{whole + sizeField(3), STAYS, 1, 3},
           Case{whole + sizeField(vt::MAX_MESSAGE_SIZE + 1), STAYS, 1, vt::MAX_MESSAGE_SIZE + 1},
           Case{sizeField(INT_MAX), STAYS, 0, INT_MAX},
           Case{sizeField(INT_MIN), STAYS, 0, INT_MIN},
           Case{sizeField(100).substr(0, 2), CLOSES, 0, 0},
           Case{sizeField(100) + std::string(50, 'c'), CLOSES, 0, 0},
           Case{sizeField(100) + std::string(50, 'r'), RESETS, 0, 0},
           Case{whole + whole + whole.substr(0, 6), CLOSES, 2, 0},
       }) {
    acceptPeers(1);
    RawPeer& peer = *peers.back();
    deliveries.clear();
    ASSERT_TRUE(peer.write(hostile_case.bytes));
    if (hostile_case.ending != STAYS) hostile_case.ending == CLOSES ? peer.close() : peer.reset();
    const std::string sent = "good after " + std::to_string(hostile_case.whole_messages);
    ASSERT_TRUE(peers[0]->write(frame(sent)));
    ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1 && !payloadsOn(0).empty(); }))
        << hostile_case.bytes.size();
    EXPECT_EQ(payloadsOn(1), std::vector<std::string>(hostile_case.whole_messages, "whole one"));
    EXPECT_EQ(payloadsOn(0), std::vector<std::string>{sent});
    EXPECT_EQ(network_manager.getNumConnections(), 1);
    if (hostile_case.ending == STAYS) {
      EXPECT_TRUE(pumpUntil([&] { return peer.sawClose(); }));
      EXPECT_TRUE(logged("NetworkManager::genDataEvents(): Error! Message size " +
                         std::to_string(hostile_case.refused_size) + " not in range [4,32768]."));
    }
  }
  peers.resize(1);
  EXPECT_EQ(countOpenFiles(), open_files);
}
