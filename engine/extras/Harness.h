#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/Vector.h"

namespace vt {

// The steps a key pressed by Harness::pressKey is held down: a quick press
// at 30 frames a second.
const int KEY_PRESS_STEPS = 3;

// Runs a game without a window, for tests: starts the engine headless with
// its log in a chosen place, advances the game loop a given number of steps
// at once (in the loop's own order, without sleeping), hands key and mouse
// input to the objects registered for it as the input manager does, replays
// recorded sessions, compares what was drawn with golden frames, reads the
// log, and stops the engine again, undoing what it changed.
class Harness {
 public:
  Harness() = default;
  // Stops the engine if it still runs and removes the temporary folder.
  ~Harness();
  Harness(const Harness&) = delete;
  Harness& operator=(const Harness&) = delete;

  // Starts every manager headless. The game's configuration file is read as
  // usual, except that headless is forced and the log goes to log_file ("",
  // the default, puts "vantor.log" in a fresh temporary folder). The path
  // may not contain blanks. 0 on success, -1 on failure.
  int startUp(const std::string& log_file = "");
  // Stops the engine (the objects still in the world are deleted) and puts
  // back the configuration and environment it changed. The log stays
  // readable until the harness is destroyed.
  void shutDown();
  bool isStarted() const { return started; }

  // Runs up to count iterations of the game loop, fewer when the game-over
  // flag gets set; returns how many ran.
  int step(int count = 1);
  // Steps until the condition holds, tested before every step; false when
  // it still does not hold after max_steps steps or at game over.
  bool stepUntil(const std::function<bool()>& condition, int max_steps);

  // Input for the next step, delivered in the order given, before the held
  // buttons and keys, as the input manager orders the window's events.
  // Keys are engine key codes (Keyboard::Key), buttons Mouse::Button,
  // positions in window cells.
  // A key pressed as a player presses it: KEY_PRESSED and KEY_DOWN in the
  // next step, KEY_DOWN in the KEY_PRESS_STEPS - 1 steps after it, then
  // KEY_RELEASED in the step after those.
  void pressKey(int key);
  // A press of no length, which no keyboard gives: KEY_PRESSED, then
  // KEY_RELEASED, both in the next step, without any KEY_DOWN.
  void tapKey(int key);
  // KEY_PRESSED, then KEY_DOWN in every step until releaseKey.
  void holdKey(int key);
  // KEY_RELEASED; ends a hold or a press.
  void releaseKey(int key);
  void moveMouse(Vector where);
  // CLICKED at the position.
  void clickMouse(int button, Vector where);
  // CLICKED, then PRESSED in every step until releaseMouse, at the last
  // position given to any of the mouse operations.
  void holdMouse(int button, Vector where);
  void releaseMouse(int button);

  // Replays a recording (made with VANTOR_RECORD or record) from the next
  // step on: the steps then take their input from it instead of from the
  // calls above. The recording must have the game's frame time and grid.
  // 0 on success, -1 with a log line.
  int replay(const std::string& recording_file);
  // Records the steps from here on into the file; 0 on success.
  int record(const std::string& recording_file);
  // Ends a replay or recording. 0 when a replay ran to its last step with
  // the world as recorded, else -1; replayFailure then says where.
  int finishReplay();
  std::string replayFailure() const;
  // Calls check at the end of the given step of a replay or recording
  // (counted from its first step), inside the loop: for looking at a game
  // whose main runs the loop itself.
  void atStep(int step, std::function<void()> check);

  // The frame the last step drew, as text (see the guide).
  std::string frameText() const;
  // The characters of one row of that frame, undrawn cells as blanks.
  std::string frameRow(int row) const;
  // Compares the last step's frame with a golden frame file: "" when they
  // match, else a cell-by-cell description of the differences; the frame
  // is then written beside it as golden_file + ".new", and the description
  // as golden_file + ".diff". With VANTOR_UPDATE_GOLDEN=1 in the
  // environment the golden file is (re)written instead and "" returned.
  std::string checkFrame(const std::string& golden_file) const;

  std::string getLogFile() const { return log_file; }
  // Everything written to the log so far.
  std::string logText() const;
  bool logContains(const std::string& text) const;

 private:
  void queueKey(int key, int action) const;
  void queueMouse(int action, int button) const;
  void queueHeldInput() const;
  // Counts down the presses under way and releases those that are over.
  void endFinishedPresses();
  void restoreEnvironment() const;
  // Runs the checks of atStep at their steps.
  void watchSteps();

  bool started = false;
  std::string folder;
  std::string log_file;
  std::vector<int> held_keys;
  // The keys of pressKey, with the steps each is still held for.
  std::map<int, int> pressed_keys;
  std::vector<int> held_buttons;
  Vector mouse_position;
  std::map<int, std::vector<std::function<void()>>> step_checks;
  // What startUp changed, put back by shutDown.
  bool had_config_variable = false;
  std::string config_variable;
  bool had_log_variable = false;
  std::string log_variable;
  bool was_headless = false;
  std::string previous_log_file;
};

}  // namespace vt
