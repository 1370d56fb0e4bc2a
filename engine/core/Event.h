#pragma once

#include <string>

namespace vt {

// Type names of the engine's own events.
extern const std::string UNDEFINED_EVENT;
extern const std::string STEP_EVENT;
extern const std::string OUT_EVENT;
extern const std::string COLLISION_EVENT;
extern const std::string PATH_EVENT;
extern const std::string KEYBOARD_EVENT;
extern const std::string MOUSE_EVENT;
extern const std::string VIEW_EVENT;
extern const std::string NETWORK_EVENT;
extern const std::string KEYBOARD_NETWORK_EVENT;
extern const std::string MOUSE_NETWORK_EVENT;
extern const std::string CUSTOM_NETWORK_EVENT;

// Something that happened, told to the objects interested in its type.
class Event {
 public:
  Event() = default;
  virtual ~Event() = default;

  void setType(std::string new_type) { event_type = std::move(new_type); }
  std::string getType() const { return event_type; }

 private:
  std::string event_type = UNDEFINED_EVENT;
};

}  // namespace vt
