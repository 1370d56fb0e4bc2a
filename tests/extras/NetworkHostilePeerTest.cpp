#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "NetworkFixture.h"
#include "core/Clock.h"
#include "extras/EventNetwork.h"
#include "extras/NetworkManager.h"

using nettest::frame;
using nettest::RawPeer;
using nettest::sizeField;
using vt::MAX_MESSAGE_SIZE;
using vt::NETWORK_CLOSE;
using vt::NETWORK_DATA;

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

  RawPeer& good() { return *peers[0]; }

  // Every data event's reader got a whole message of a sane size.
  void expectSaneDeliveries() const {
    for (const nettest::Delivery& delivery : deliveries) {
      if (delivery.label != NETWORK_DATA) continue;
      EXPECT_GE(delivery.message.size(), std::size_t(vt::MESSAGE_HEADER_SIZE));
      EXPECT_EQ(sizeField(int(delivery.message.size())), delivery.message.substr(0, 4));
    }
  }
};

int countOpenFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return static_cast<int>(std::distance(begin(files), end(files)));
}

}  // namespace

TEST_F(NetworkHostilePeerTest, BadSizesCloseOnlyTheOffender) {
  std::vector<std::string> sent;
  for (const int size : {0, -5, 3, MAX_MESSAGE_SIZE + 1, INT_MAX, INT_MIN}) {
    auto p_peer = hostile();
    ASSERT_TRUE(p_peer->write(sizeField(size) + std::string(20, 'j')));
    sent.push_back("good " + std::to_string(size));
    ASSERT_TRUE(good().write(frame(sent.back())));
    ASSERT_TRUE(pumpUntil([&] { return p_peer->sawClose() && payloadsOn(0) == sent; })) << size;
    EXPECT_TRUE(logged("NetworkManager::genDataEvents(): Error! Message size " +
                       std::to_string(size) + " not in range [4,32768]."));
  }
  EXPECT_EQ(network_manager.getNumConnections(), 1);
  EXPECT_EQ(countLabel(NETWORK_CLOSE), 6);
  expectSaneDeliveries();
}

TEST_F(NetworkHostilePeerTest, ReceiveAndSendRefuseBadCounts) {
  const std::string largest = frame(std::string(MAX_MESSAGE_SIZE - vt::MESSAGE_HEADER_SIZE, 'L'));
  ASSERT_TRUE(good().write(largest + frame("next")));
  ASSERT_TRUE(pumpUntil([&] { return network_manager.isData(0) == MAX_MESSAGE_SIZE + 8; }));
  std::vector<char> buffer(MAX_MESSAGE_SIZE + 1);
  EXPECT_EQ(network_manager.receive(0, buffer.data(), -1), -1);
  EXPECT_EQ(network_manager.receive(0, buffer.data(), MAX_MESSAGE_SIZE + 1), -1);
  EXPECT_EQ(network_manager.send(0, buffer.data(), -3), -1);
  EXPECT_TRUE(
      logged("NetworkManager::receive(): Error! Cannot receive -1 bytes (0 to 32768 "
             "allowed).\n"));
  EXPECT_TRUE(logged("NetworkManager::receive(): Error! Cannot receive 32769 bytes"));
  EXPECT_TRUE(logged("NetworkManager::send(): Error! Cannot send -3 bytes"));
  // Nothing was consumed: the largest allowed message and the next arrive.
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 2; }));
  EXPECT_EQ(deliveries[deliveries.size() - 2].message, largest);
  EXPECT_EQ(payloadsOn(0).back(), "next");
}

TEST_F(NetworkHostilePeerTest, CutMessagesAreNeverDeliveredAndTheCloseComesLast) {
  struct Case {
    std::string bytes;
    bool reset;
  };
  const std::string whole = frame("whole one");
  for (const Case& cut : {
           Case{sizeField(100).substr(0, 2), false},
           Case{sizeField(100) + std::string(50, 'c'), false},
           Case{sizeField(100) + std::string(50, 'r'), true},
           Case{whole + whole + whole.substr(0, 6), false},
       }) {
    auto p_peer = hostile();
    deliveries.clear();
    ASSERT_TRUE(p_peer->write(cut.bytes));
    cut.reset ? p_peer->reset() : p_peer->close();
    ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_CLOSE) == 1; }));
    EXPECT_EQ(deliveries.back().label, NETWORK_CLOSE);
    EXPECT_EQ(network_manager.getNumConnections(), 1);
  }
  // Only the two whole messages, once each, from the last peer.
  EXPECT_EQ(payloadsOn(1), std::vector<std::string>(2, "whole one"));
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
    ASSERT_TRUE(good().write(frame(sent.back())));
    network_manager.processFrame(vt::Clock(), 33);
  }
  for (const auto& p_peer : noisy) p_peer->close();
  ASSERT_TRUE(pumpUntil(
      [&] { return network_manager.getNumConnections() == 1 && payloadsOn(0).size() == 100; }));
  EXPECT_EQ(payloadsOn(0), sent);
  EXPECT_EQ(countLabel(NETWORK_CLOSE), 8);
  expectSaneDeliveries();
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
  ASSERT_TRUE(good().write(frame("still served")));
  ASSERT_TRUE(pumpUntil([&] { return countLabel(NETWORK_DATA) == 1; }));
  EXPECT_EQ(payloadsOn(0), std::vector<std::string>{"still served"});
}
