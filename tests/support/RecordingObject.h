#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "core/EventStep.h"
#include "core/GameManager.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "world/Object.h"

namespace test {

// An object that remembers every event it receives and can run a hook from its handler.
class RecordingObject : public vt::Object {
 public:
  // Registered for the event types given.
  explicit RecordingObject(std::initializer_list<std::string> interests = {}) {
    for (const std::string& type : interests) registerInterest(type);
  }
  int eventHandler(const vt::Event* p_event) override {
    received.push_back(p_event->getType());
    if (p_event->getType() == vt::STEP_EVENT)
      steps.push_back(static_cast<const vt::EventStep*>(p_event)->getStepCount());
    seen.push_back(describe(p_event));
    if (on_event) on_event(p_event);
    return 1;
  }
  int count(const std::string& event_type) const {
    return static_cast<int>(std::count(received.begin(), received.end(), event_type));
  }
  // "step <count>", "key <action> <key>", "mouse <action> <button> (<x>,<y>)" or the event's type.
  static std::string describe(const vt::Event* p_event) {
    if (const auto* p_step = dynamic_cast<const vt::EventStep*>(p_event))
      return "step " + std::to_string(p_step->getStepCount());
    if (const auto* p_key = dynamic_cast<const vt::EventKeyboard*>(p_event)) {
      return "key " + std::to_string(p_key->getKeyboardAction()) + " " +
             std::to_string(p_key->getKey());
    }
    if (const auto* p_mouse = dynamic_cast<const vt::EventMouse*>(p_event)) {
      return "mouse " + std::to_string(p_mouse->getMouseAction()) + " " +
             std::to_string(p_mouse->getMouseButton()) + " " +
             p_mouse->getMousePosition().toString();
    }
    return p_event->getType();
  }
  // One registered for steps that calls on_step with each step's number and
  // sets game over at last_step.
  static RecordingObject* untilStep(int last_step, std::function<void(int)> on_step = {}) {
    auto* p_object = new RecordingObject({vt::STEP_EVENT});
    p_object->on_event = [=](const vt::Event*) {
      if (on_step) on_step(p_object->steps.back());
      if (p_object->steps.back() == last_step) vt::GameManager::getInstance().setGameOver();
    };
    return p_object;
  }

  std::vector<std::string> received;
  std::vector<int> steps;
  std::vector<std::string> seen;
  // Called for every event after it is recorded.
  std::function<void(const vt::Event*)> on_event;
};

}  // namespace test
