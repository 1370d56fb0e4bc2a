#pragma once

#include <functional>
#include <utility>

#include "extras/EventNetwork.h"
#include "world/Object.h"

// An object registered for network events that hands each one to a
// function: the reading side of the network benchmarks. It does nothing
// else with an event, so the cost of a step is the network's and the
// function's own.
class MessageReader : public vt::Object {
 public:
  explicit MessageReader(std::function<void(const vt::EventNetwork&)> new_on_network)
      : on_network(std::move(new_on_network)) {
    registerInterest(vt::NETWORK_EVENT);
  }
  int eventHandler(const vt::Event* p_event) override {
    if (p_event->getType() != vt::NETWORK_EVENT) return 0;
    on_network(static_cast<const vt::EventNetwork&>(*p_event));
    return 1;
  }

 private:
  std::function<void(const vt::EventNetwork&)> on_network;
};
