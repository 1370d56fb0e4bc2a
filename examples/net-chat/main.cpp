// net-chat: two people chat through the engine's network manager. The same
// program plays both roles:
//   net-chat server [port]        waits for one client (port "0": any free one)
//   net-chat client host [port]   connects to a server
// Run it from its build folder, beside its vt-config.txt (networking on).
#include <cstdlib>
#include <iostream>
#include <string>

#include "Chat.h"
#include "core/GameManager.h"
#include "core/LogManager.h"
#include "extras/NetworkManager.h"

namespace {

bool startServer(const std::string& port) {
  new Chat(true);
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  if (network_manager.setServer(true, port) != 0) return false;
  std::cout << "Waiting for a client on port " << network_manager.getServerPort() << "."
            << std::endl;
  return true;
}

bool startClient(const std::string& host, const std::string& port) {
  new Chat(false);
  return vt::NetworkManager::getInstance().connect(host, port) >= 0;
}

}  // namespace

int main(int argc, char* argv[]) {
  const std::string role = argc > 1 ? argv[1] : "";
  const bool is_server = role == "server";
  if (!is_server && !(role == "client" && argc > 2)) {
    std::cerr << "usage: net-chat server [port]\n       net-chat client host [port]\n";
    return 2;
  }
  // One log file per role, so that two instances can share a folder.
  setenv("VANTOR_LOG", ("net-chat-" + role + ".log").c_str(), 0);
  vt::GameManager& game_manager = vt::GameManager::getInstance();
  if (game_manager.startUp() != 0) {
    vt::LogManager::getInstance().writeLog("Error starting game manager!");
    game_manager.shutDown();
    return 1;
  }
  const int port_argument = is_server ? 2 : 3;
  const std::string port = argc > port_argument ? argv[port_argument] : vt::DEFAULT_PORT;
  const bool started = is_server ? startServer(port) : startClient(argv[2], port);
  if (started) {
    game_manager.run();
  } else {
    std::cerr << "net-chat: no connection; see net-chat-" << role << ".log\n";
  }
  game_manager.shutDown();
  return started ? 0 : 1;
}
