#pragma once

#include <string>

#include "core/Event.h"

namespace vt {

// Changes the value of the view objects whose view string equals the tag:
// adds to it when delta is true, replaces it otherwise.
class EventView : public Event {
 public:
  EventView() { setType(VIEW_EVENT); }
  EventView(std::string init_tag, int init_value, bool init_delta)
      : tag(std::move(init_tag)), value(init_value), delta(init_delta) {
    setType(VIEW_EVENT);
  }

  void setTag(std::string new_tag) { tag = std::move(new_tag); }
  std::string getTag() const { return tag; }
  void setValue(int new_value) { value = new_value; }
  int getValue() const { return value; }
  void setDelta(bool new_delta) { delta = new_delta; }
  bool getDelta() const { return delta; }

 private:
  std::string tag;
  int value = 0;
  bool delta = false;
};

}  // namespace vt
