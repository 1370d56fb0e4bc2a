#include "Chat.h"

#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <iostream>
#include <vector>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "extras/NetworkManager.h"

namespace {

const char* const GREETING =
    "Welcome to net-chat. Type a line to send it; end your input to leave.";

}  // namespace

Chat::Chat(bool init_is_server) : is_server(init_is_server), input(STDIN_FILENO) {
  setType("Chat");
  setSolidness(vt::SPECTRAL);
  registerInterest(vt::NETWORK_EVENT);
  registerInterest(vt::STEP_EVENT);
}

int Chat::eventHandler(const vt::Event* p_event) {
  if (p_event->getType() == vt::NETWORK_EVENT) {
    onNetwork(static_cast<const vt::EventNetwork&>(*p_event));
    return 1;
  }
  if (p_event->getType() == vt::STEP_EVENT) {
    onStep();
    return 1;
  }
  return 0;
}

void Chat::onNetwork(const vt::EventNetwork& event) {
  switch (event.getLabel()) {
    case vt::NETWORK_ACCEPT:
      peer = event.getSocketIndex();
      std::cout << "A client joined." << std::endl;
      sendText(GREETING);
      greeted = true;
      break;
    case vt::NETWORK_CONNECT:
      peer = event.getSocketIndex();
      std::cout << "Connected; waiting for the server's greeting." << std::endl;
      break;
    case vt::NETWORK_DATA:
      receiveMessage(event);
      greeted = true;
      break;
    case vt::NETWORK_CLOSE:
      std::cout << "The chat is over." << std::endl;
      vt::GameManager::getInstance().setGameOver();
      break;
  }
}

void Chat::receiveMessage(const vt::EventNetwork& event) {
  std::vector<char> message(static_cast<std::size_t>(event.getBytes()));
  const int received = vt::NetworkManager::getInstance().receive(event.getSocketIndex(),
                                                                 message.data(), event.getBytes());
  if (received < vt::MESSAGE_HEADER_SIZE) return;
  std::cout << "peer: "
            << std::string(message.data() + vt::MESSAGE_HEADER_SIZE,
                           static_cast<std::size_t>(received - vt::MESSAGE_HEADER_SIZE))
            << std::endl;
}

void Chat::onStep() {
  if (!greeted || input.atEnd()) return;
  for (const std::string& line : input.readLines()) sendText(line);
  // A server whose input ends just stops sending; a client leaves.
  if (input.atEnd() && !is_server) vt::NetworkManager::getInstance().close(peer);
}

void Chat::sendText(const std::string& text) const {
  const std::string body = text.substr(0, vt::MAX_MESSAGE_SIZE - vt::MESSAGE_HEADER_SIZE);
  const auto size = static_cast<std::int32_t>(body.size() + vt::MESSAGE_HEADER_SIZE);
  std::string message(sizeof(size), '\0');
  std::memcpy(message.data(), &size, sizeof(size));
  message += body;
  vt::NetworkManager::getInstance().send(peer, message.data(), static_cast<int>(message.size()));
}
