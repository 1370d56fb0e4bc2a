#pragma once

// What the network benchmarks share: a listening engine and a reader of
// its network events.

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <utility>

#include "core/Config.h"
#include "extras/EventNetwork.h"
#include "extras/Harness.h"
#include "extras/NetworkManager.h"
#include "world/Object.h"

// Starts the engine with networking on (so that it starts the network
// manager too) and listens on a free port; "" with the benchmark marked
// skipped when either fails.
inline std::string startServer(benchmark::State& state, vt::Harness& harness) {
  vt::Config::getInstance().setNetworking(true);
  if (harness.startUp() != 0) {
    state.SkipWithError("the engine did not start");
    return "";
  }
  vt::NetworkManager& network_manager = vt::NetworkManager::getInstance();
  if (network_manager.setServer(true, "0") != 0) {
    state.SkipWithError("cannot listen");
    return "";
  }
  return network_manager.getServerPort();
}

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
