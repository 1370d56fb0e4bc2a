#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "NetworkFixture.h"
#include "core/Clock.h"
#include "extras/EventNetwork.h"
#include "extras/NetworkManager.h"

using nettest::frame;
using nettest::RawPeer;
using vt::MAX_MESSAGE_SIZE;
using vt::NETWORK_ACCEPT;
using vt::NETWORK_CLOSE;
using vt::NETWORK_DATA;

namespace {

// A server with one well-behaved client, connection 0; hostile clients come
// after it, so closing them never moves it.
class NetworkHostilePeerTest : public nettest::NetworkFixture {
 protected:
  void SetUp() override {
    serve();
    listen();
    good = std::make_unique<RawPeer>(port);
    ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_ACCEPT) == 1; }));
  }

  // Accepts one more client and returns it.
  std::unique_ptr<RawPeer> hostile() {
    network_manager.setMaxConnections(network_manager.getNumConnections() + 1);
    auto p_peer = std::make_unique<RawPeer>(port);
    const int accepted = countLabel(NETWORK_ACCEPT) + 1;
    EXPECT_TRUE(pumpUntil([&] { return countLabel(NETWORK_ACCEPT) == accepted; }));
    return p_peer;
  }

  static std::string sizeField(std::int32_t size) {
    return std::string(reinterpret_cast<const char*>(&size), sizeof(size));
  }

  // Every data event announced a sane size and its reader got exactly that.
  void expectSaneDeliveries() const {
    for (const nettest::Delivery& delivery : deliveries) {
      if (delivery.label != NETWORK_DATA) continue;
      EXPECT_GE(delivery.bytes, vt::MESSAGE_HEADER_SIZE);
      EXPECT_LE(delivery.bytes, MAX_MESSAGE_SIZE);
      EXPECT_EQ(static_cast<int>(delivery.message.size()), delivery.bytes);
    }
  }

  std::unique_ptr<RawPeer> good;
};

}  // namespace

TEST_F(NetworkHostilePeerTest, BadSizesCloseOnlyTheOffender) {
  const std::int32_t bad_sizes[] = {0, -5, 3, MAX_MESSAGE_SIZE + 1, INT_MAX, INT_MIN};
  std::vector<std::string> sent;
  for (const std::int32_t size : bad_sizes) {
    auto p_peer = hostile();
    ASSERT_TRUE(p_peer->write(sizeField(size) + std::string(20, 'j')));
    sent.push_back("good " + std::to_string(size));
    ASSERT_TRUE(good->write(frame(sent.back())));
    ASSERT_TRUE(pumpUntil([&] { return p_peer->sawClose() && payloadsOn(0) == sent; }))
        << "size " << size;
    EXPECT_NE(engine.logText().find("NetworkManager::genDataEvents(): Error! Message size " +
                                    std::to_string(size) + " not in range [4,32768]."),
              std::string::npos);
  }
  EXPECT_EQ(network_manager.getNumConnections(), 1);
  EXPECT_EQ(countLabel(NETWORK_CLOSE), 6);
  expectSaneDeliveries();
}

TEST_F(NetworkHostilePeerTest, ReceiveAndSendRefuseBadCounts) {
  const std::string largest = frame(std::string(MAX_MESSAGE_SIZE - vt::MESSAGE_HEADER_SIZE, 'L'));
  ASSERT_TRUE(good->write(largest));
  ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == MAX_MESSAGE_SIZE; }));
  std::vector<char> buffer(MAX_MESSAGE_SIZE + 1);
  EXPECT_EQ(network_manager.receive(0, buffer.data(), -1), -1);
  EXPECT_EQ(network_manager.receive(0, buffer.data(), MAX_MESSAGE_SIZE + 1), -1);
  EXPECT_EQ(network_manager.send(0, buffer.data(), -3), -1);
  const std::string log = engine.logText();
  EXPECT_NE(log.find("NetworkManager::receive(): Error! Cannot receive -1 bytes (0 to 32768 "
                     "allowed).\n"),
            std::string::npos);
  EXPECT_NE(log.find("NetworkManager::receive(): Error! Cannot receive 32769 bytes"),
            std::string::npos);
  EXPECT_NE(log.find("NetworkManager::send(): Error! Cannot send -3 bytes"), std::string::npos);
  // Nothing was consumed: the largest allowed message still arrives whole.
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 1; }));
  EXPECT_EQ(deliveries.back().message, largest);
}

TEST_F(NetworkHostilePeerTest, CutAndDroppedMessagesAreNeverDelivered) {
  struct Case {
    std::string bytes;
    bool reset;
  };
  const std::string whole = frame("whole one");
  const Case cases[] = {
      {sizeField(100).substr(0, 2), false},
      {sizeField(100) + std::string(50, 'c'), false},
      {sizeField(100) + std::string(50, 'r'), true},
      {whole + whole.substr(0, 6), false},
  };
  for (const Case& cut : cases) {
    auto p_peer = hostile();
    const int closes = countLabel(NETWORK_CLOSE) + 1;
    ASSERT_TRUE(p_peer->write(cut.bytes));
    ASSERT_TRUE(pumpUntil([&] {
      return network_manager.isData(1) == int(cut.bytes.size()) || countLabel(NETWORK_DATA) > 0;
    }));
    cut.reset ? p_peer->reset() : p_peer->close();
    ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == closes; }));
  }
  // Only the one whole message, once, from the last peer.
  ASSERT_EQ(countLabel(NETWORK_DATA), 1);
  EXPECT_EQ(payloadsOn(1), std::vector<std::string>{"whole one"});
  EXPECT_EQ(network_manager.getNumConnections(), 1);
}

TEST_F(NetworkHostilePeerTest, RandomBytesBesideAWellBehavedPeer) {
  std::vector<std::unique_ptr<RawPeer>> noisy;
  for (int i = 0; i < 8; i++) noisy.push_back(hostile());
  std::srand(7);
  std::vector<std::string> sent;
  for (int round = 0; round < 100; round++) {
    for (const auto& p_peer : noisy) {
      std::string junk(static_cast<std::size_t>(1 + std::rand() % 40), '\0');
      for (char& byte : junk) byte = static_cast<char>(std::rand());
      p_peer->write(junk);
    }
    sent.push_back(std::string(static_cast<std::size_t>(std::rand() % 300), 'g') +
                   std::to_string(round));
    ASSERT_TRUE(good->write(frame(sent.back())));
    network_manager.processFrame(vt::Clock(), nettest::FRAME_TIME);
  }
  for (const auto& p_peer : noisy) p_peer->close();
  ASSERT_TRUE(pumpUntil(
      [&] { return network_manager.getNumConnections() == 1 && payloadsOn(0).size() == 100; }));
  EXPECT_EQ(payloadsOn(0), sent);
  EXPECT_EQ(countLabel(NETWORK_CLOSE), 8);
  expectSaneDeliveries();
}

TEST_F(NetworkHostilePeerTest, HundredsOfConnectCloseCyclesLeaveNothingBehind) {
  const int open_files = nettest::countOpenFiles();
  for (int cycle = 0; cycle < 300; cycle++) {
    auto p_peer = hostile();
    const int closes = countLabel(NETWORK_CLOSE) + 1;
    if (cycle % 3 == 1) p_peer->write(sizeField(64));
    cycle % 3 == 2 ? p_peer->reset() : p_peer->close();
    ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == closes; })) << cycle;
  }
  EXPECT_EQ(network_manager.getNumConnections(), 1);
  EXPECT_EQ(nettest::countOpenFiles(), open_files);
  ASSERT_TRUE(good->write(frame("still served")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 1; }));
  EXPECT_EQ(payloadsOn(0), std::vector<std::string>{"still served"});
}
