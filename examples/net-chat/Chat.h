#pragma once

#include <string>

#include "LineReader.h"
#include "extras/EventNetwork.h"
#include "world/Object.h"

// One side of a two-person chat. Each step it sends the lines typed on
// standard input to the peer; each data event it receives a message and
// prints it. The server greets its client when it connects, and the client
// starts sending once greeted. The client leaves when its input ends; the
// chat, and the game loop, end when the connection closes.
class Chat : public vt::Object {
 public:
  explicit Chat(bool init_is_server);

  int eventHandler(const vt::Event* p_event) override;

 private:
  void onNetwork(const vt::EventNetwork& event);
  void onStep();
  void receiveMessage(const vt::EventNetwork& event);
  // Frames the text as a message: its size, then the text.
  void sendText(const std::string& text) const;

  bool is_server;
  // The peer's connection index, -1 before it connects.
  int peer = -1;
  // True once the server has greeted its client.
  bool greeted = false;
  LineReader input;
};
