#pragma once

#include <cstdint>
#include <string>

#include "core/Manager.h"
#include "core/Version.h"

namespace vt {

// The exit status of a game whose replay (VANTOR_REPLAY) did not unfold as
// recorded.
const int REPLAY_FAILED_STATUS = 3;

// Owns the game loop: starts the other managers in order, runs one iteration
// per frame at a fixed frame time and stops them again.
class GameManager : public Manager {
 public:
  static GameManager& getInstance();

  // Only "vt-step" is delivered by the game manager.
  bool isValid(std::string event_type) const override;
  int startUp() override;
  void shutDown() override;

  // Runs the loop until the game-over flag is set.
  void run();
  // Runs one iteration of the loop at once, without pacing: the path
  // searches get a whole frame time (at least a millisecond) and nothing
  // sleeps. For tests and tools that drive the loop themselves; the
  // game-over flag is not consulted.
  void step();
  // Times the frame under way from now on: a handler that waited on
  // purpose (a pause waiting for a key) calls it when the wait ends, so
  // that the wait is not reported as a late frame.
  void restartFrame() { frame_restarted = true; }

  bool getGameOver() const { return game_over; }
  void setGameOver(bool new_game_over = true) { game_over = new_game_over; }
  int getFrameTime() const { return frame_time; }
  int getStepCount() const { return step_count; }

  // The manager that delivers events of this type: the game manager
  // "vt-step", the input manager the keyboard's and the mouse's, the network
  // manager the network's, the world manager every other. Unregistering from
  // "vt-custom-network" goes to the world manager, unlike registering for it.
  static Manager& managerFor(const std::string& event_type, bool unregistering = false);

  // What the loop gives the network step of a frame of that many
  // milliseconds: a fifth of it, in microseconds.
  static long long networkBudget(int frame_time_ms);

 private:
  GameManager();

  // One iteration of the loop; paced, it fits the path searches into what
  // is left of the frame and sleeps away the rest. Returns the oversleep to
  // carry into the next iteration.
  std::int64_t iterate(class Clock& clock, std::int64_t adjust_time, bool paced);
  // The window's or terminal's input, then the network's messages.
  void takeInput(const class Clock& clock, class FrameStats& stats) const;
  // Sprites read again when their files changed, then the world moved and drawn.
  void updateAndDraw(class FrameStats& stats) const;
  // Runs the path searches for this step; returns the turns they took.
  int searchPaths(const class Clock& clock, std::int64_t adjust_time, bool paced) const;
  int startManagers();
  void stopManagers();
  void seedRandom() const;
  // The path searches' share of the frame: 95 % of what is left of it, in
  // whole milliseconds; negative when the frame is already late.
  int pathBudget(const class Clock& clock, std::int64_t adjust_time) const;
  // Sets the step count, and the one the log stamps its lines with.
  void setStepCount(int new_step_count);
  // Sleeps away the rest of the frame and returns the new oversleep.
  std::int64_t sleepRestOfFrame(const class Clock& clock, std::int64_t adjust_time) const;
  // The frame time in microseconds, wide enough for any frame time.
  std::int64_t frameMicroseconds() const;

  bool game_over = false;
  int frame_time = 0;
  int step_count = 0;
  unsigned long previous_timer_slack = 0;
  bool frame_restarted = false;
};

// Logs the signal, shuts the engine down and ends the process with the
// signal as exit status; meant to be installed as a signal handler.
void doShutDown(int signal);

}  // namespace vt
