#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "NetworkFixture.h"
#include "extras/EventNetwork.h"
#include "extras/NetworkManager.h"

using nettest::frame;
using nettest::RawPeer;
using nettest::sizeField;
using vt::NETWORK_CLOSE;

namespace {

// A server with one well-behaved client, connection 0; hostile clients come
// after it, so closing them never moves it.
class NetworkHostilePeerTest : public nettest::NetworkFixture {
 protected:
  void SetUp() override { acceptPeers(1); }

  // Accepts one more client and returns it.
  std::unique_ptr<RawPeer> hostile() {
    const int count = network_manager.getNumConnections() + 1;
    network_manager.setMaxConnections(count);
    auto p_peer = std::make_unique<RawPeer>(port);
    EXPECT_TRUE(pumpUntil([&] { return network_manager.getNumConnections() == count; }));
    return p_peer;
  }
};

int countOpenFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return static_cast<int>(std::distance(begin(files), end(files)));
}

}  // namespace

TEST_F(NetworkHostilePeerTest, BadSizesAndCutMessagesCloseOnlyTheOffenderAfterItsWholeMessages) {
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
    auto p_peer = hostile();
    deliveries.clear();
    ASSERT_TRUE(p_peer->write(hostile_case.bytes));
    if (hostile_case.ending != STAYS) {
      hostile_case.ending == CLOSES ? p_peer->close() : p_peer->reset();
    }
    const std::string sent = "good after " + std::to_string(hostile_case.whole_messages);
    ASSERT_TRUE(peers[0]->write(frame(sent)));
    ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1 && !payloadsOn(0).empty(); }))
        << hostile_case.bytes.size();
    EXPECT_EQ(payloadsOn(1), std::vector<std::string>(hostile_case.whole_messages, "whole one"));
    EXPECT_EQ(payloadsOn(0), std::vector<std::string>{sent});
    EXPECT_EQ(network_manager.getNumConnections(), 1);
    if (hostile_case.ending == STAYS) {
      EXPECT_TRUE(pumpUntil([&] { return p_peer->sawClose(); }));
      EXPECT_TRUE(logged("NetworkManager::genDataEvents(): Error! Message size " +
                         std::to_string(hostile_case.refused_size) + " not in range [4,32768]."));
    }
  }
}

TEST_F(NetworkHostilePeerTest, HundredsOfConnectCloseCyclesLeaveNothingBehind) {
  const int open_files = countOpenFiles();
  for (int cycle = 0; cycle < 300; cycle++) {
    auto p_peer = hostile();
    const int closes = countLabel(NETWORK_CLOSE) + 1;
    if (cycle % 3 == 1) p_peer->write(sizeField(64));
    cycle % 3 == 2 ? p_peer->reset() : p_peer->close();
    ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == closes; })) << cycle;
  }
  EXPECT_EQ(network_manager.getNumConnections(), 1);
  EXPECT_EQ(countOpenFiles(), open_files);
  ASSERT_TRUE(peers[0]->write(frame("still served")));
  ASSERT_TRUE(pumpUntil([&] { return !payloadsOn(0).empty(); }));
  EXPECT_EQ(payloadsOn(0), std::vector<std::string>{"still served"});
}
