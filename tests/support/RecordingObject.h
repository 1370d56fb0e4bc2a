#pragma once

#include <functional>
#include <string>
#include <vector>

#include "world/Object.h"

namespace test {

// An object that remembers every event it receives and can run a hook
// from its handler.
class RecordingObject : public vt::Object {
 public:
  RecordingObject() = default;

  int eventHandler(const vt::Event* p_event) override;

  // Event types received, in order.
  std::vector<std::string> received;
  // Step counts of the "vt-step" events received.
  std::vector<int> steps;
  // Called for every event after it is recorded.
  std::function<void(const vt::Event*)> on_event;

  int count(const std::string& event_type) const;
};

}  // namespace test
