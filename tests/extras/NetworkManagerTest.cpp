#include "extras/NetworkManager.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/Clock.h"
#include "core/Config.h"
#include "extras/EventNetwork.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

using namespace vt;
using Strings = std::vector<std::string>;

namespace {

// The four bytes announcing a message of this size, header included.
std::string sizeField(int size) {
  return std::string(reinterpret_cast<const char*>(&size), sizeof(size));
}

std::string frame(const std::string& payload) {
  return sizeField(static_cast<int>(payload.size()) + MESSAGE_HEADER_SIZE) + payload;
}

// A plain TCP client on loopback, as a test's remote end.
class RawPeer {
 public:
  explicit RawPeer(const std::string& port) : fd(socket(AF_INET, SOCK_STREAM, 0)) {
    const sockaddr_in address{AF_INET, htons(std::stoi(port)), {htonl(INADDR_LOOPBACK)}, {}};
    if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) close();
  }
  ~RawPeer() { close(); }
  bool write(const std::string& bytes) const {
    return send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) == ssize_t(bytes.size());
  }
  bool sawClose() const {
    char byte = 0;
    const ssize_t got = recv(fd, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    return got == 0 || (got < 0 && errno != EAGAIN);
  }
  void close() { ::close(std::exchange(fd, -1)); }
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
    Config::getInstance().setNetworking(true);
    network_manager.startUp();
    auto* p_listener = new test::RecordingObject;
    EXPECT_EQ(p_listener->registerInterest(NETWORK_EVENT), 0);
    p_listener->on_event = [this](const Event* p_event) {
      const auto& event = dynamic_cast<const EventNetwork&>(*p_event);
      events.emplace_back(event.getLabel(), event.getSocketIndex());
      if (!reading || event.getLabel() != NETWORK_DATA) return;
      std::string message(static_cast<std::size_t>(event.getBytes()), '\0');
      network_manager.receive(event.getSocketIndex(), message.data(), event.getBytes());
      payloads[event.getSocketIndex()].push_back(message.substr(MESSAGE_HEADER_SIZE));
    };
    EXPECT_EQ(network_manager.setServer(true, "0"), 0);
    port = network_manager.getServerPort();
  }
  ~NetworkManagerTest() override {
    // closeAll() skips every other connection: close them one by one.
    while (network_manager.getNumConnections() > 0) network_manager.close(0);
    network_manager.shutDown();
    network_manager.setMaxConnections(1);
    Config::getInstance().setNetworking(was_networking);
  }

  void acceptPeers(int count) {
    for (int i = 0; i < count; i++) {
      const int connections = network_manager.getNumConnections() + 1;
      network_manager.setMaxConnections(connections);
      peers.push_back(std::make_unique<RawPeer>(port));
      ASSERT_TRUE(pumpUntil([&] { return network_manager.getNumConnections() == connections; }));
    }
  }
  // Runs the loop's network step until done() holds; false after 20 s or more.
  template <typename Condition>
  bool pumpUntil(const Condition& done) {
    for (int i = 0; i < 20000 && !done(); i++) {
      network_manager.processFrame(Clock(), 33);
      usleep(1000);
    }
    return done();
  }
  auto countLabel(int label) const {
    return std::count_if(events.begin(), events.end(), [&](auto e) { return e.first == label; });
  }
  bool logged(const std::string& line) const {
    return engine.logText().find(line) != std::string::npos;
  }

  test::HeadlessEngine engine;
  const bool was_networking = Config::getInstance().getNetworking();
  NetworkManager& network_manager = NetworkManager::getInstance();
  std::string port;
  std::vector<std::unique_ptr<RawPeer>> peers;
  std::vector<std::pair<int, int>> events;  // label and connection of each, in order
  std::map<int, Strings> payloads;          // received on each connection, in order
  bool reading = true;
};

TEST_F(NetworkManagerTest, ServerAndClientInOneProcessExchangeMessagesOnce) {
  network_manager.setMaxConnections(2);
  ASSERT_EQ(network_manager.connect("127.0.0.1", port), 0);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_ACCEPT) == 1; }));
  EXPECT_EQ(events, (std::vector<std::pair<int, int>>{{NETWORK_CONNECT, 0}, {NETWORK_ACCEPT, 1}}));
  ASSERT_EQ(network_manager.send(0, frame("hello").data(), 9), 0);
  ASSERT_EQ(network_manager.send(1, frame("welcome, client").data(), 19), 0);
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 2; }));
  EXPECT_EQ(payloads, (std::map<int, Strings>{{0, {"welcome, client"}}, {1, {"hello"}}}));
}

TEST_F(NetworkManagerTest, WholeMessagesOnlyAreAnnouncedAndUnreadOnesAgainUntilTheBudgetEnds) {
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
  EXPECT_EQ(network_manager.receive(0, peeked.data(), -1), -1);
  EXPECT_EQ(network_manager.send(0, peeked.data(), -3), -1);
  EXPECT_EQ(network_manager.genDataEvents(0), 1);
  EXPECT_EQ(payloads[0], Strings{"abcdef"});
  EXPECT_TRUE(logged("receive(): Error! Cannot receive -1 bytes (0 to 32768 allowed).\n"));
  EXPECT_TRUE(logged("NetworkManager::send(): Error! Cannot send -3 bytes"));

  std::string burst;
  for (int i = 0; i < 5; i++) burst += frame("message " + std::to_string(i));
  ASSERT_TRUE(peers[0]->write(burst));
  ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == int(burst.size()); }));
  // Read as announced: one frame takes all five and leaves nothing.
  EXPECT_EQ(network_manager.processFrame(Clock(), 5000), 5);
  EXPECT_EQ(payloads[0].back(), "message 4");
  EXPECT_FALSE(logged("Residual network data"));
  reading = false;
  ASSERT_TRUE(peers[0]->write(frame("nobody reads me")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) > 7; }));
  EXPECT_TRUE(logged("GameManager::run(): Warning! Residual network data.\n"));
  // With no budget at all there is exactly one pass, announcing it again.
  EXPECT_EQ(network_manager.processFrame(Clock(), 0), 1);
  EXPECT_EQ(network_manager.isData(0), 19);
}

TEST_F(NetworkManagerTest, FastPeerHasEveryMessageDeliveredInOrderThenItsClose) {
  const auto numbered = [](int i) { return std::string(32760, char('a' + i % 26)) + sizeField(i); };
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    RawPeer peer(port);
    for (int i = 0; i < 300; i++) peer.write(frame(numbered(i)));
    _exit(0);
  }
  const bool closed = pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1; });
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  ASSERT_TRUE(closed && payloads[0].size() == 300) << payloads[0].size() << " of 300 arrived";
  for (int i = 0; i < 300; i++) ASSERT_EQ(payloads[0][i], numbered(i)) << i;
}

TEST_F(NetworkManagerTest, ClientsBeyondTheLimitAreRefusedAndCloseRenumbersTheOthers) {
  EXPECT_EQ(network_manager.accept(), -1);
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
  RawPeer refused(port);
  network_manager.setMaxConnections(1);
  ASSERT_TRUE(pumpUntil([&] { return refused.sawClose(); }));
  EXPECT_EQ(network_manager.getNumConnections(), 1);
  // Its peer gone, sending fails with the reason instead of killing the process.
  peers[2]->close();
  int result = 0;
  for (int i = 0; i < 20 && result == 0; i++) result = network_manager.send(0, "anyone?", 7);
  EXPECT_EQ(result, -1);
  EXPECT_TRUE(logged("\t32 - Broken pipe") || logged("\t104 - Connection reset by peer"));
}

TEST_F(NetworkManagerTest, MisuseAndFailuresAreRefusedWithTheirLogLines) {
  EXPECT_EQ(network_manager.startUp(), -1);
  // A port whose listener has just gone: connecting is refused.
  EXPECT_EQ(network_manager.setServer(false), 0);
  EXPECT_EQ(network_manager.connect("127.0.0.1", port), -1);
  EXPECT_EQ(network_manager.accept(), -2);
  EXPECT_EQ(network_manager.connect("127.0.0.1", "no-such-service"), -1);
  char buffer[8] = {};
  EXPECT_EQ(network_manager.send(0, buffer, 1), -1);
  EXPECT_EQ(network_manager.receive(0, buffer, 1), -1);
  EXPECT_EQ(network_manager.isData(3), -1);
  for (const std::string& type :
       {KEYBOARD_NETWORK_EVENT, MOUSE_NETWORK_EVENT, CUSTOM_NETWORK_EVENT})
    EXPECT_TRUE(network_manager.isValid(type)) << type;
  EXPECT_FALSE(network_manager.isValid(STEP_EVENT));
  for (const char* line : {
           "NetworkManager::startup(): Warning! NetworkManager already started.",
           "NetworkManager::connect(): Error! connect() returned:\n",
           "\t111 - Connection refused\n",
           "NetworkManager::accept(): Error! Not setup as server.",
           "NetworkManager::connect(): Error! getaddrinfo() returned:\n",
           "NetworkManager::send(): Error! Socket 0 not connected. Unable to send.",
           "NetworkManager::receive(): Error! Socket 0 not connected. Unable to receive.",
           "NetworkManager::isData(): Error! Sock index 3 not connected.",
           "NetworkManager::isValid(): Error! NetworkManager does not handle vt-step.",
       }) {
    EXPECT_TRUE(logged(line)) << line;
  }
}

// Each hostile peer joins after a good one, connection 0, which must not notice.
TEST_F(NetworkManagerTest, BadSizesAndCutMessagesCloseOnlyTheOffenderAfterItsWholeMessages) {
  acceptPeers(1);
  const auto open_files = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  };
  const auto files_before = open_files();
  enum { STAYS, CLOSES, RESETS };
  struct Case {
    std::string bytes;
    int ending, whole_messages, refused_size;  // the size only when the peer stays
  };
  const std::string whole = frame("whole one");
  for (const Case& hostile_case : {
           Case{sizeField(0), STAYS, 0, 0},
           Case{sizeField(-5) + "junk", STAYS, 0, -5},
           Case{whole + sizeField(3), STAYS, 1, 3},
           Case{whole + sizeField(MAX_MESSAGE_SIZE + 1), STAYS, 1, MAX_MESSAGE_SIZE + 1},
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
  EXPECT_FALSE(logged("recv() returned"));  // a reset is a peer leaving, not an error
}

}  // namespace
