#include "extras/NetworkManager.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "core/Clock.h"
#include "core/Config.h"
#include "extras/EventNetwork.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

using vt::NETWORK_ACCEPT;
using vt::NETWORK_CLOSE;
using vt::NETWORK_CONNECT;
using vt::NETWORK_DATA;
using Strings = std::vector<std::string>;

namespace {

// The four bytes announcing a message of this size, header included.
std::string sizeField(int size) {
  const auto field = static_cast<std::int32_t>(size);
  return std::string(reinterpret_cast<const char*>(&field), sizeof(field));
}

std::string frame(const std::string& payload) {
  return sizeField(static_cast<int>(payload.size()) + vt::MESSAGE_HEADER_SIZE) + payload;
}

// A plain TCP client on loopback, as a test's remote end.
class RawPeer {
 public:
  explicit RawPeer(const std::string& port) : fd(socket(AF_INET, SOCK_STREAM, 0)) {
    const auto port_number = static_cast<std::uint16_t>(std::stoi(port));
    const sockaddr_in address{AF_INET, htons(port_number), {htonl(INADDR_LOOPBACK)}, {}};
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) close();
  }
  ~RawPeer() { close(); }
  // Blocks until all of it is queued.
  bool write(const std::string& bytes) const {
    return send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) == ssize_t(bytes.size());
  }
  bool sawClose() const {
    pollfd poll_fd{fd, POLLIN, 0};
    char byte = 0;
    return poll(&poll_fd, 1, 0) > 0 && recv(fd, &byte, 1, MSG_PEEK | MSG_DONTWAIT) <= 0;
  }
  void close() {
    if (fd >= 0) ::close(fd);
    fd = -1;
  }
  // Closes with a reset instead of an orderly shutdown.
  void reset() {
    const linger abort_on_close{1, 0};
    setsockopt(fd, SOL_SOCKET, SO_LINGER, &abort_on_close, sizeof(abort_on_close));
    close();
  }

 private:
  int fd;
};

// Networking on, serving on a free port, with an object receiving every
// message it is told about; puts back what it changed in the singletons.
class NetworkManagerTest : public testing::Test {
 protected:
  NetworkManagerTest() {
    vt::Config::getInstance().setNetworking(true);
    network_manager.startUp();
    auto* p_listener = new test::RecordingObject;
    EXPECT_EQ(p_listener->registerInterest(vt::NETWORK_EVENT), 0);
    p_listener->on_event = [this](const vt::Event* p_event) {
      const auto& event = dynamic_cast<const vt::EventNetwork&>(*p_event);
      events.emplace_back(event.getLabel(), event.getSocketIndex());
      if (!reading || event.getLabel() != NETWORK_DATA) return;
      std::string message(static_cast<std::size_t>(event.getBytes()), '\0');
      network_manager.receive(event.getSocketIndex(), message.data(), event.getBytes());
      payloads[event.getSocketIndex()].push_back(message.substr(vt::MESSAGE_HEADER_SIZE));
    };
    EXPECT_EQ(network_manager.setServer(true, "0"), 0);
    port = network_manager.getServerPort();
  }
  ~NetworkManagerTest() override {
    // closeAll() skips every other connection: close them one by one.
    while (network_manager.getNumConnections() > 0) network_manager.close(0);
    network_manager.shutDown();
    network_manager.setMaxConnections(1);
    vt::Config::getInstance().setNetworking(was_networking);
  }

  // Accepts count more raw clients, appended to peers.
  void acceptPeers(int count) {
    for (int i = 0; i < count; i++) {
      const int connections = network_manager.getNumConnections() + 1;
      network_manager.setMaxConnections(connections);
      peers.push_back(std::make_unique<RawPeer>(port));
      ASSERT_TRUE(pumpUntil([&] { return network_manager.getNumConnections() == connections; }));
    }
  }
  // Runs the loop's network step until done() holds; false after 20 s.
  bool pumpUntil(const std::function<bool()>& done) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!done()) {
      if (std::chrono::steady_clock::now() > limit) return false;
      network_manager.processFrame(vt::Clock(), 33);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
  }
  int countLabel(int label) const {
    return int(
        std::count_if(events.begin(), events.end(), [&](auto e) { return e.first == label; }));
  }
  bool logged(const std::string& line) const {
    return engine.logText().find(line) != std::string::npos;
  }
  int sendText(int sock_index, const std::string& payload) {
    const std::string message = frame(payload);
    return network_manager.send(sock_index, message.data(), static_cast<int>(message.size()));
  }

  test::HeadlessEngine engine;
  const bool was_networking = vt::Config::getInstance().getNetworking();
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  std::string port;
  std::vector<std::unique_ptr<RawPeer>> peers;
  // Label and connection of every network event, in order.
  std::vector<std::pair<int, int>> events;
  // Payloads received on each connection, in order.
  std::map<int, Strings> payloads;
  // Whether the listener receives each message it is told about.
  bool reading = true;
};

TEST_F(NetworkManagerTest, ServerAndClientInOneProcessExchangeMessagesOnce) {
  network_manager.setMaxConnections(2);
  ASSERT_EQ(network_manager.connect("127.0.0.1", port), 0);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_ACCEPT) == 1; }));
  EXPECT_EQ(events, (std::vector<std::pair<int, int>>{{NETWORK_CONNECT, 0}, {NETWORK_ACCEPT, 1}}));
  ASSERT_EQ(sendText(0, "hello"), 0);
  ASSERT_EQ(sendText(1, "welcome, client"), 0);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 2; }));
  // Read messages are gone: further frames raise nothing new.
  for (int i = 0; i < 5; i++) network_manager.processFrame(vt::Clock(), 33);
  EXPECT_EQ(payloads, (std::map<int, Strings>{{0, {"welcome, client"}}, {1, {"hello"}}}));
  EXPECT_EQ(network_manager.isData(0) + network_manager.isData(1), 0);
}

TEST_F(NetworkManagerTest, DataEventOnlyWhenTheWholeMessageWaitsAndPeekingKeepsIt) {
  acceptPeers(1);
  const std::string message = frame("abcdef");
  // Ten bytes in three pieces: no event until the last one is in.
  for (const auto& [from, count] : {std::pair{0, 2}, {2, 7}, {9, 1}}) {
    ASSERT_TRUE(peers[0]->write(message.substr(from, count)));
    ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == from + count; }));
    EXPECT_EQ(countLabel(NETWORK_DATA), 0);
  }
  std::string peeked(6, '\0');
  EXPECT_EQ(network_manager.receive(0, peeked.data(), 6, true), 6);
  EXPECT_EQ(peeked, message.substr(0, 6));
  // Counts no single call may handle are refused and consume nothing.
  EXPECT_EQ(network_manager.receive(0, peeked.data(), -1), -1);
  EXPECT_EQ(network_manager.receive(0, peeked.data(), vt::MAX_MESSAGE_SIZE + 1), -1);
  EXPECT_EQ(network_manager.send(0, peeked.data(), -3), -1);
  EXPECT_EQ(network_manager.genDataEvents(0), 1);
  EXPECT_EQ(network_manager.genDataEvents(0), 0);
  EXPECT_EQ(payloads[0], Strings{"abcdef"});
  for (const char* line :
       {"NetworkManager::receive(): Error! Cannot receive -1 bytes (0 to 32768 allowed).\n",
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
  EXPECT_EQ(payloads[0].back(), "message 4");
  EXPECT_FALSE(logged("Residual network data"));
  reading = false;
  ASSERT_TRUE(peers[0]->write(frame("nobody reads me")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) > 6; }));
  EXPECT_TRUE(logged("GameManager::run(): Warning! Residual network data.\n"));
  // With no budget at all there is exactly one pass, announcing it again.
  const int announced = countLabel(NETWORK_DATA);
  EXPECT_EQ(network_manager.processFrame(vt::Clock(), 0), 1);
  EXPECT_EQ(countLabel(NETWORK_DATA), announced + 1);
  EXPECT_EQ(network_manager.isData(0), 19);
}

TEST_F(NetworkManagerTest, FastPeerHasEveryMessageDeliveredInOrderThenItsClose) {
  // Messages of the largest size, numbered in their last four bytes.
  const auto numbered = [](int i) { return std::string(32760, char('a' + i % 26)) + sizeField(i); };
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // Back to back as fast as the socket takes them, then hang up.
    RawPeer peer(port);
    for (int i = 0; i < 300; i++) {
      if (!peer.write(frame(numbered(i)))) _exit(1);
    }
    _exit(0);
  }
  const bool closed = pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1; });
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  ASSERT_TRUE(closed) << payloads[0].size() << " of 300 arrived, then nothing";
  ASSERT_EQ(payloads[0].size(), 300u);
  for (int i = 0; i < 300; i++) ASSERT_EQ(payloads[0][i], numbered(i)) << i;
  EXPECT_EQ(events.back().first, NETWORK_CLOSE);
}

TEST_F(NetworkManagerTest, ConnectionLimitRefusesTheSecondClientAndOnlyAServerAccepts) {
  EXPECT_EQ(network_manager.getMaxConnections(), 1);
  EXPECT_EQ(network_manager.accept(), -1);
  acceptPeers(1);
  RawPeer second(port);
  ASSERT_TRUE(pumpUntil([&] { return second.sawClose(); }));
  EXPECT_EQ(network_manager.getNumConnections(), 1);
  EXPECT_FALSE(peers[0]->sawClose());
  EXPECT_EQ(network_manager.setServer(false), 0);
  EXPECT_EQ(network_manager.accept(), -2);
  EXPECT_TRUE(logged("NetworkManager::accept(): Error! Not setup as server."));
}

TEST_F(NetworkManagerTest, CloseRenumbersLaterConnectionsAndCloseAllSkipsEveryOther) {
  acceptPeers(3);
  EXPECT_EQ(network_manager.close(0), 0);
  EXPECT_EQ(events.back(), std::pair(int(NETWORK_CLOSE), 0));
  ASSERT_TRUE(peers[1]->write(frame("from B")));
  ASSERT_TRUE(peers[2]->write(frame("from C")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 2; }));
  EXPECT_EQ(payloads, (std::map<int, Strings>{{0, {"from B"}}, {1, {"from C"}}}));
  EXPECT_EQ(network_manager.close(2), -1);
  EXPECT_TRUE(logged("NetworkManager::close(): sock_index (2) out of range."));
  // Three again, then closeAll: the middle one stays open.
  acceptPeers(1);
  EXPECT_EQ(network_manager.closeAll(), 0);
  ASSERT_EQ(network_manager.getNumConnections(), 1);
  ASSERT_TRUE(pumpUntil([&] { return peers[1]->sawClose() && peers[3]->sawClose(); }));
  EXPECT_FALSE(peers[2]->sawClose());
  // Its peer gone, sending fails with the reason instead of killing the process.
  peers[2]->close();
  int result = 0;
  for (int i = 0; i < 20 && result == 0; i++) result = sendText(0, "anyone there?");
  EXPECT_EQ(result, -1);
  EXPECT_TRUE(logged("\t32 - Broken pipe") || logged("\t104 - Connection reset by peer"));
}

TEST_F(NetworkManagerTest, MisuseAndFailuresAreRefusedWithTheirLogLines) {
  EXPECT_EQ(network_manager.startUp(), -1);
  // A port whose listener has just gone: connecting is refused.
  EXPECT_EQ(network_manager.setServer(false), 0);
  EXPECT_EQ(network_manager.connect("127.0.0.1", port), -1);
  EXPECT_EQ(network_manager.connect("127.0.0.1", "no-such-service"), -1);
  char buffer[8] = {};
  EXPECT_EQ(network_manager.send(0, buffer, 1), -1);
  EXPECT_EQ(network_manager.receive(0, buffer, 1), -1);
  EXPECT_EQ(network_manager.isData(3), -1);
  // Every network event type is the network manager's to route.
  auto* p_object = new test::RecordingObject;
  for (const std::string& type :
       {vt::KEYBOARD_NETWORK_EVENT, vt::MOUSE_NETWORK_EVENT, vt::CUSTOM_NETWORK_EVENT}) {
    EXPECT_EQ(p_object->registerInterest(type), 0) << type;
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
  const auto open_files = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto files_before = open_files();
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
    events.clear();
    payloads.clear();
    ASSERT_TRUE(peer.write(hostile_case.bytes));
    if (hostile_case.ending != STAYS) hostile_case.ending == CLOSES ? peer.close() : peer.reset();
    const std::string sent = "good after " + std::to_string(hostile_case.whole_messages);
    ASSERT_TRUE(peers[0]->write(frame(sent)));
    ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1 && payloads.count(0); }));
    EXPECT_EQ(payloads[1], Strings(hostile_case.whole_messages, "whole one"));
    EXPECT_EQ(payloads[0], Strings{sent});
    EXPECT_EQ(network_manager.getNumConnections(), 1);
    if (hostile_case.ending == STAYS) {
      EXPECT_TRUE(pumpUntil([&] { return peer.sawClose(); }));
      EXPECT_TRUE(logged("NetworkManager::genDataEvents(): Error! Message size " +
                         std::to_string(hostile_case.refused_size) + " not in range [4,32768]."));
    }
  }
  peers.resize(1);
  EXPECT_EQ(open_files(), files_before);
}

}  // namespace
