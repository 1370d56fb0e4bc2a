#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/GameManager.h"
#include "extras/Harness.h"
#include "extras/Timers.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/InputActions.h"
#include "support/RecordingObject.h"

using vt::Vector;

namespace {

vt::GameManager& game = vt::GameManager::getInstance();

}  // namespace

TEST(Timers, RunInTheStepTheyAreDueWhoeverSetsThemUntilCancelled) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  std::vector<std::string> ran;
  const auto note = [&ran](std::string name) {
    return [&ran, name] { ran.push_back(name + "@" + std::to_string(game.getStepCount())); };
  };
  // Set in step 2 by step handlers that run before and after the timers' own.
  vt::Timers* p_timers = nullptr;
  const auto setInStep2 = [&](const char* name) {
    auto* p_setter = new test::RecordingObject;
    p_setter->registerInterest(vt::STEP_EVENT);
    p_setter->on_event = [&, name](const vt::Event*) {
      if (game.getStepCount() == 2) p_timers->after(3, note(name));
    };
  };
  setInStep2("before");
  p_timers = new vt::Timers;
  setInStep2("after");
  p_timers->after(2, note("between steps"));
  const int every = p_timers->every(3, note("every"));
  p_timers->after(7, [&] { p_timers->cancel(every); });
  const int cancelled = p_timers->after(1, note("cancelled"));
  EXPECT_EQ(p_timers->cancel(cancelled) + p_timers->cancel(cancelled), -1);
  EXPECT_EQ(p_timers->after(0, note("never")) + p_timers->every(1, nullptr), -2);
  EXPECT_TRUE(harness.logContains("Timers::after(): Error! 0 steps is below 1; no timer set.") &&
              harness.logContains("Timers::every(): Error! No action given; no timer set."));
  harness.step(12);
  EXPECT_EQ(ran, (std::vector<std::string>{"between steps@2", "every@3", "before@5", "after@5",
                                           "every@6"}));
  // The loop counts from 0 again at each run: a waiting timer keeps its distance.
  p_timers->after(2, note("run"));
  p_timers->after(4, [] { game.setGameOver(); });
  game.run();
  EXPECT_EQ(ran.back(), "run@2");
  // The step handlers set theirs again in the run's step 2.
  EXPECT_EQ(p_timers->getWaitingCount(), 2);
}

TEST(InputActions, FollowTheirKeysAndButtonsStepByStep) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  auto* p_actions = new vt::InputActions;
  const int bound = p_actions->bindKey("up", vt::Keyboard::W) +
                    p_actions->bindKey("up", vt::Keyboard::UPARROW) +
                    p_actions->bindButton("fire", vt::Mouse::LEFT);
  const int refused = p_actions->bindKey("", vt::Keyboard::A) +
                      p_actions->bindKey("x", vt::Keyboard::UNDEFINED_KEY) +
                      p_actions->bindButton("x", 7);
  EXPECT_TRUE(bound == 0 && refused == -3);
  const auto state = [&](const char* action) {
    return std::string(p_actions->isPressed(action) ? "P" : "-") +
           (p_actions->isHeld(action) ? "H" : "-") + (p_actions->isReleased(action) ? "R" : "-");
  };
  const struct {
    std::function<void()> input;
    const char* up;
    const char* fire;
  } steps[] = {
      {[&] { harness.pressKey(vt::Keyboard::W); }, "PH-", "---"},
      {[&] { harness.holdKey(vt::Keyboard::UPARROW); }, "-H-", "---"},
      {[&] { harness.holdMouse(vt::Mouse::LEFT, Vector(3, 3)); }, "-H-", "PH-"},
      {[] {}, "-H-", "-H-"},
      {[&] {
         harness.releaseKey(vt::Keyboard::UPARROW);
         harness.releaseMouse(vt::Mouse::LEFT);
       },
       "--R", "--R"},
      // A tap, with no held step, is held in its own step.
      {[&] { harness.tapKey(vt::Keyboard::UPARROW); }, "PH-", "---"},
      {[] {}, "--R", "---"},
  };
  for (const auto& step : steps) {
    step.input();
    harness.step();
    EXPECT_EQ(state("up") + " " + state("fire"), std::string(step.up) + " " + step.fire)
        << "step " << &step - steps;
  }
  EXPECT_EQ(state("jump") + state("jump"), "------");
  const std::string log = harness.logText();
  const std::string unbound = "InputActions: Warning! Nothing is bound to the action 'jump'.";
  EXPECT_TRUE(log.find(unbound) != std::string::npos && log.find(unbound) == log.rfind(unbound));
}
