#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "core/Config.h"
#include "core/GameManager.h"
#include "extras/Firework.h"
#include "extras/Harness.h"
#include "extras/Particle.h"
#include "extras/Particles.h"
#include "extras/Pause.h"
#include "extras/Precipitation.h"
#include "extras/Splash.h"
#include "extras/SplashVantor.h"
#include "extras/Timers.h"
#include "media/EventKeyboard.h"
#include "media/EventMouse.h"
#include "media/InputActions.h"
#include "media/ViewObject.h"
#include "support/HeadlessEngine.h"
#include "support/RecordingObject.h"
#include "world/WorldManager.h"

using vt::Vector;
using vt::WorldManager;

namespace {

vt::GameManager& game = vt::GameManager::getInstance();

int countOf(const std::string& type) {
  return WorldManager::getInstance().objectsOfType(type).getCount();
}

}  // namespace

// The pause's message is drawn in the centre of the screen in the step its key comes in; a replay,
// which does not wait, shows it in that step's frame. Without a message the pause draws nothing.
TEST(Pause, ItsMessageIsShownInTheCentreOfTheScreen) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  // In the harness's own folder, kept until it is destroyed.
  const std::string recording = harness.getLogFile() + ".vrec";
  new vt::Pause(vt::Keyboard::F10);
  ASSERT_EQ(harness.record(recording), 0);
  harness.step();
  harness.tapKey(vt::Keyboard::F10);
  harness.step(2);
  ASSERT_EQ(harness.finishReplay(), 0);
  EXPECT_TRUE(harness.logContains("Cannot pause"));
  const std::string blank(80, ' ');
  for (const std::string message : {"", "Paused: any key resumes"}) {
    SCOPED_TRACE(message);
    harness.shutDown();
    ASSERT_EQ(harness.startUp(), 0);
    (new vt::Pause(vt::Keyboard::F10))->setMessage(message, vt::YELLOW);
    ASSERT_EQ(harness.replay(recording), 0);
    std::string shown = blank;
    shown.replace(40 - message.size() / 2, message.size(), message);
    for (const std::string& expected : {blank, shown, blank}) {
      harness.step();
      EXPECT_EQ(harness.frameRow(12), expected);
    }
    EXPECT_EQ(harness.finishReplay(), 0) << harness.replayFailure();
  }
}

// Size 20 and a fixed seed: the shortest and longest lives both occur. How
// they fly is fixed by the presets' golden frames.
TEST(Particles, PresetsSprayTheirCountAndLiveTheirLives) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  WorldManager::getInstance().setBoundary(vt::Box(Vector(-500, -500), 1000, 1000));
  // Steps the loop; returns how many objects of the type are left.
  const auto runSteps = [&](int count, const std::string& type = "Particle") {
    harness.step(count);
    return countOf(type);
  };
  std::srand(7);
  const std::tuple<int, int, int, int> PRESETS[] = {{vt::PARTICLE_BURST, 200, 8, 16},
                                                    {vt::PARTICLE_SMOKE, 100, 20, 30},
                                                    {vt::PARTICLE_SPARKLE, 160, 5, 12}};
  const Vector origin(40, 12);
  for (const auto& [preset, count, min_life, max_life] : PRESETS) {
    SCOPED_TRACE(preset);
    ASSERT_EQ(vt::addParticles(preset, origin, 20.0f, vt::RED), 0);
    EXPECT_EQ(countOf("Particle"), count);
    runSteps(1);
    EXPECT_EQ(runSteps(min_life - 2), count);
    EXPECT_LT(runSteps(1), count);
    EXPECT_GT(runSteps(max_life - min_life - 1), 0);
    EXPECT_EQ(runSteps(1), 0);
  }
  // A particle that leaves the world goes before its life ends.
  new vt::Particle(Vector(495, 0), Vector(10, 0), '*', vt::RED, 100);
  EXPECT_EQ(runSteps(2), 0);
  ASSERT_EQ(vt::addParticles(vt::PARTICLE_SNOW, Vector(), 1.0f, vt::WHITE, 4), 0);
  EXPECT_EQ(runSteps(29, "Precipitation"), 1);
  // Snow falls for 30 steps, drifting sideways a tenth of a cell a step at most; a rocket
  // climbs and bursts; both at the altitude given. Unknown presets and altitudes are refused.
  EXPECT_GT(countOf("Particle"), 0);
  for (const vt::Object* p_flake : WorldManager::getInstance().objectsOfType("Particle"))
    EXPECT_LE(std::fabs(p_flake->getVelocity().getX()), 0.1001f);
  EXPECT_EQ(runSteps(1, "Precipitation"), 0);
  runSteps(80);  // the flakes melt: what is left after the rocket is its burst
  ASSERT_EQ(vt::addParticles(vt::PARTICLE_FIREWORK, origin, 1.0f, vt::CYAN, 4), 0);
  EXPECT_EQ(runSteps(20, "Firework"), 0);
  EXPECT_GT(countOf("Particle"), 0);
  for (const vt::Object* p_particle : WorldManager::getInstance().objectsOfType("Particle"))
    EXPECT_EQ(p_particle->getAltitude(), 4);
  EXPECT_EQ(vt::addParticles(42, Vector(), 1.0f, vt::WHITE) +
                vt::addParticles(vt::PARTICLE_BURST, Vector(), 1.0f, vt::RED, 5),
            -2);
  // Their colour fades from their own to the background's over their life.
  unsigned char rgb[3];
  vt::Config& config = vt::Config::getInstance();
  const vt::Color background = config.getWindowBackgroundColor();
  config.setWindowBackgroundColor(vt::BLUE);
  for (const auto& [age, level, blue] :
       {std::tuple{0, 255, 0}, {5, 128, 128}, {10, 0, 255}, {15, 0, 255}}) {
    vt::Particle::fadedColor(vt::YELLOW, age, 10, rgb[0], rgb[1], rgb[2]);
    EXPECT_EQ(std::vector<int>(rgb, rgb + 3), (std::vector<int>{level, level, blue})) << age;
  }
  config.setWindowBackgroundColor(background);
}

TEST(Particles, EachPresetLooksAsItsGoldenFrame) {
  for (int preset = vt::PARTICLE_BURST; preset <= vt::PARTICLE_SNOW; preset++) {
    vt::Harness harness;
    ASSERT_EQ(harness.startUp(), 0);
    std::srand(1);
    ASSERT_EQ(vt::addParticles(preset, Vector(40, 12), 2.0f, vt::GREEN), 0);
    harness.step(8);
    const std::string golden =
        std::string(VANTOR_FRAMES_DIR) + "/particles-" + std::to_string(preset) + ".frame";
    EXPECT_EQ(harness.checkFrame(golden), "");
  }
}

// The engine's own objects, as the game's: each made at its altitude (the default for one out of
// range) and with its solidness, and answering whether it handled an event.
TEST(EngineObjects, EachIsMadeAsItsRoleWantsAndAnswersWhetherItHandledTheEvent) {
  vt::Harness harness;
  ASSERT_EQ(harness.startUp(), 0);
  EXPECT_EQ(
      test::describeRoles({new vt::Object, new vt::Particle({}, {}, '*', vt::RED, 9),
                           new vt::Firework({}, vt::RED, 1, 5, 7),
                           new vt::Precipitation(vt::RED, 1, true, 5, -1),
                           new vt::Pause(vt::Keyboard::F10), new vt::Timers, new vt::InputActions,
                           new vt::ViewObject, new vt::Splash, new vt::SplashVantor({})}),
      "(Undefined)@2/0:00000 Particle@3/2:11000 Firework@3/2:11000 Precipitation@3/2:10000 "
      "Pause@2/2:00100 Timers@2/2:10000 InputActions@2/2:10110 ViewObject@4/2:00001 "
      "Splash@2/2:10100 SplashVantor@2/2:10100");
}

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
    auto* p_setter = new test::RecordingObject({vt::STEP_EVENT});
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
  // The input before each step, and the states of "up" and "fire" after it.
  const std::pair<std::function<void()>, const char*> steps[] = {
      {[&] { harness.pressKey(vt::Keyboard::W); }, "PH- ---"},
      {[&] { harness.holdKey(vt::Keyboard::UPARROW); }, "-H- ---"},
      {[&] { harness.holdMouse(vt::Mouse::LEFT, Vector(3, 3)); }, "-H- PH-"},
      {[] {}, "-H- -H-"},
      {[&] {
         harness.releaseKey(vt::Keyboard::UPARROW);
         harness.releaseMouse(vt::Mouse::LEFT);
       },
       "--R --R"},
      // A tap, with no held step, is held in its own step.
      {[&] { harness.tapKey(vt::Keyboard::UPARROW); }, "PH- ---"},
      {[] {}, "--R ---"},
  };
  for (const auto& step : steps) {
    step.first();
    harness.step();
    EXPECT_EQ(state("up") + " " + state("fire"), step.second) << "step " << &step - steps;
  }
  // A run of the loop counts its steps from 0 again: a tap before it is not taken for one in it.
  std::string in_new_run;
  test::RecordingObject::untilStep(6, [&](int) { in_new_run = state("up"); });
  game.run();
  EXPECT_EQ(in_new_run, "---");
  EXPECT_EQ(state("jump") + state("jump"), "------");
  const std::string log = harness.logText();
  const std::string unbound = "InputActions: Warning! Nothing is bound to the action 'jump'.";
  EXPECT_TRUE(log.find(unbound) != std::string::npos && log.find(unbound) == log.rfind(unbound));
}
