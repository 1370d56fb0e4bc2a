#include "extras/EventNetwork.h"

#include "core/LogManager.h"

namespace vt {

EventNetwork::EventNetwork(NetworkEventLabel init_label, int init_socket_index, int init_bytes)
    : label(init_label), socket_index(init_socket_index), bytes(init_bytes) {
  setType(NETWORK_EVENT);
}

int EventNetwork::setLabel(int new_label) {
  if (new_label < NETWORK_ACCEPT || new_label > NETWORK_DATA) {
    LogManager::getInstance().writeLog("EventNetwork::setLabel(): Undefined type (%d).", new_label);
    return -1;
  }
  label = new_label;
  return 0;
}

}  // namespace vt
