#pragma once

#include "core/Event.h"

namespace vt {

// What a network event reports.
enum NetworkEventLabel {
  NETWORK_ACCEPT = 0,   // a client connected to this server
  NETWORK_CONNECT = 1,  // this client connected to a server
  NETWORK_CLOSE = 2,    // a connection was closed
  NETWORK_DATA = 3,     // a whole message is waiting to be received
};

// Raised by the network manager when a connection opens or closes and when
// a whole length-prefixed message has arrived on one.
class EventNetwork : public Event {
 public:
  EventNetwork(NetworkEventLabel init_label, int init_socket_index, int init_bytes);

  // Labels outside NETWORK_ACCEPT..NETWORK_DATA are logged and ignored.
  int setLabel(int new_label);
  int getLabel() const { return label; }
  void setSocketIndex(int new_socket_index) { socket_index = new_socket_index; }
  int getSocketIndex() const { return socket_index; }
  // The message size of a data event, header included; 0 for other labels.
  void setBytes(int new_bytes) { bytes = new_bytes; }
  int getBytes() const { return bytes; }

 private:
  int label;
  int socket_index;
  int bytes;
};

}  // namespace vt
