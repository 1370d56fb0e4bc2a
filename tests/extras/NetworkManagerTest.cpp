#include "extras/NetworkManager.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <map>

#include "core/Clock.h"
#include "core/Config.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"

using namespace vt;
using Strings = std::vector<std::string>;

namespace {

// The header: the four bytes announcing a message of this size, header included.
const auto sizeField = [](int size) { return std::string(reinterpret_cast<char*>(&size), 4); };

std::string frame(const std::string& payload) {
  return sizeField(static_cast<int>(payload.size()) + MESSAGE_HEADER_SIZE) + payload;
}

struct RawPeer {  // a plain TCP client on loopback
  explicit RawPeer(const std::string& port) {
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
  void close(bool reset = false) {  // reset: abort the connection instead of shutting it down
    const linger abort_on_close{1, 0};
    if (reset) setsockopt(fd, SOL_SOCKET, SO_LINGER, &abort_on_close, sizeof(abort_on_close));
    ::close(std::exchange(fd, -1));
  }
  int fd = socket(AF_INET, SOCK_STREAM, 0);
};

// Serving on a free port, with an object that receives every message it is told about.
class NetworkManagerTest : public testing::Test {
 protected:
  NetworkManagerTest() {
    Config::getInstance().setNetworking(true);
    network_manager.startUp();
    auto* p_listener = new test::RecordingObject({NETWORK_EVENT});
    p_listener->on_event = [this](const Event* p_event) {
      const auto& event = dynamic_cast<const EventNetwork&>(*p_event);
      events.emplace_back(event.getLabel(), event.getSocketIndex());
      if (event.getLabel() != NETWORK_DATA) return;
      std::string message(static_cast<std::size_t>(event.getBytes()), '\0');
      network_manager.receive(event.getSocketIndex(), message.data(), event.getBytes());
      payloads[event.getSocketIndex()].push_back(message.substr(MESSAGE_HEADER_SIZE));
    };
    EXPECT_EQ(network_manager.setServer(true, "0"), 0);
    port = network_manager.getServerPort();
  }
  ~NetworkManagerTest() override {
    // closeAll() skips every other connection: close them one by one.
    while (network_manager.getNumConnections() > 0) EXPECT_EQ(network_manager.close(0), 0);
    network_manager.shutDown();
    network_manager.setMaxConnections(1);
  }
  void acceptPeers(int count) {
    for (int i = 0; i < count; i++) {
      const int connections = network_manager.getNumConnections() + 1;
      network_manager.setMaxConnections(connections);
      peers.emplace_back(port);
      ASSERT_TRUE(pumpUntil([&] { return network_manager.getNumConnections() == connections; }));
    }
  }
  // Runs the loop's network step until done() holds; false after 20 s or more.
  bool pumpUntil(const std::function<bool()>& done) {
    for (int i = 0; i < 20000 && !done(); i++)
      network_manager.processFrame(Clock(), 6600), usleep(1000);  // a fifth of 33 ms
    return done();
  }
  auto countLabel(int label) const {
    return std::count_if(events.begin(), events.end(), [&](auto e) { return e.first == label; });
  }

  test::HeadlessEngine engine;
  NetworkManager& network_manager = NetworkManager::getInstance();
  std::string port;
  std::deque<RawPeer> peers;
  std::vector<std::pair<int, int>> events;  // label and connection of each, in order
  std::map<int, Strings> payloads;          // received on each connection, in order
};

}  // namespace

// A server and a client exchanging messages, each in a process of its own,
// are the net-chat example's test.
TEST_F(NetworkManagerTest, OnlyWholeMessagesAreAnnouncedAndBadOnesCloseOnlyTheirConnection) {
  acceptPeers(1);
  const std::string message = frame("abcdef");
  // Ten bytes in three pieces: no event until the last one is in.
  for (const auto& [from, count] : {std::pair{0, 2}, {2, 7}, {9, 1}}) {
    ASSERT_TRUE(peers[0].write(message.substr(from, count)));
    ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == from + count; }));
    EXPECT_EQ(countLabel(NETWORK_DATA), 0);
  }
  EXPECT_EQ(network_manager.genDataEvents(0), 1);
  std::string burst = frame("");
  for (int i = 0; i < 4; i++) burst += frame("message " + std::to_string(i));
  ASSERT_TRUE(peers[0].write(burst));
  ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == int(burst.size()); }));
  EXPECT_EQ(network_manager.processFrame(Clock(), 5000), 5);
  EXPECT_EQ(payloads[0],
            (Strings{"abcdef", "", "message 0", "message 1", "message 2", "message 3"}));
  // A bad size or a cut message closes only its sender, after its whole
  // messages: connection 0 does not notice. The bytes sent, the whole messages
  // in them and the size refused; a peer not refused hangs up or resets.
  const std::tuple<std::string, int, int, bool> CASES[] = {
      {sizeField(-5) + "junk", 0, -5, false},
      {frame("whole") + sizeField(3), 1, 3, false},
      {frame("whole") + sizeField(MAX_MESSAGE_SIZE + 1), 1, MAX_MESSAGE_SIZE + 1, false},
      {sizeField(100).substr(0, 2), 0, 0, false},
      {sizeField(100) + std::string(50, 'r'), 0, 0, true},
      {frame("whole") + frame("whole") + frame("cut").substr(0, 6), 2, 0, false}};
  for (const auto& [bytes, whole_messages, refused_size, reset] : CASES) {
    acceptPeers(1);
    events.clear(), payloads.clear();
    ASSERT_TRUE(peers.back().write(bytes));
    if (refused_size == 0) peers.back().close(reset);
    const std::string sent = "good after " + std::to_string(whole_messages);
    ASSERT_TRUE(peers[0].write(frame(sent)));
    ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1 && payloads.count(0); }));
    EXPECT_EQ(payloads[1], Strings(whole_messages, "whole"));
    EXPECT_EQ(payloads[0], Strings{sent});
    if (refused_size == 0) continue;
    EXPECT_TRUE(pumpUntil([&] { return peers.back().sawClose(); }));
    EXPECT_NE(engine.logText().find("NetworkManager::genDataEvents(): Error! Message size " +
                                    std::to_string(refused_size) + " not in range [4,32768]."),
              std::string::npos);
  }
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

TEST_F(NetworkManagerTest, ClientsBeyondTheLimitAreRefusedCloseRenumbersTheOthersAndResetsFail) {
  acceptPeers(3);
  EXPECT_EQ(network_manager.close(0), 0);
  ASSERT_TRUE(peers[1].write(frame("from B")) && peers[2].write(frame("from C")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 2; }));
  EXPECT_EQ(payloads, (std::map<int, Strings>{{0, {"from B"}}, {1, {"from C"}}}));
  network_manager.setMaxConnections(2);
  RawPeer refused(port);
  EXPECT_EQ(network_manager.accept(), -1);
  ASSERT_TRUE(pumpUntil([&] { return refused.sawClose(); }));
  EXPECT_EQ(network_manager.getNumConnections(), 2);
  // Closing all closes the first, and then the third of those renumbered.
  EXPECT_EQ(network_manager.closeAll(), 0);
  EXPECT_EQ(network_manager.getNumConnections(), 1);
  // Sending it no bytes is no failure, but a count of bytes out of range is refused. Then C resets:
  // a failed read is an error, not a message of no bytes.
  char buffer[4];
  EXPECT_EQ(
      std::vector<int>({network_manager.send(0, buffer, 0), network_manager.send(0, buffer, -1),
                        network_manager.receive(0, buffer, MAX_MESSAGE_SIZE + 1)}),
      std::vector<int>({0, -1, -1}));
  peers[2].close(true);
  EXPECT_EQ(network_manager.receive(0, buffer, 4), -1);
  EXPECT_NE(engine.logText().find("\t104 - Connection reset by peer\n"), std::string::npos);
  // No such connection, no such service, nobody at the port, no such event label: refused.
  EventNetwork event(NETWORK_DATA, 0, 0);
  EXPECT_EQ(std::vector<int>(
                {network_manager.send(1, buffer, 4), network_manager.receive(1, buffer, 4),
                 network_manager.close(1), network_manager.connect("127.0.0.1", "no-service"),
                 network_manager.connect("127.0.0.1", "1"), event.setLabel(NETWORK_ACCEPT - 1),
                 event.setLabel(NETWORK_DATA + 1)}),
            std::vector<int>(7, -1));
}
