#pragma once

#include <cstdint>
#include <fstream>
#include <functional>
#include <string>

#include "extras/Recording.h"

namespace vt {

// Records a session's outside input to a text file, or replays one in its
// place, so that any game can be played back exactly as it was played.
// The game loop calls beginStep and endStep around each iteration; the
// game needs no code of its own. Started from the environment by the game
// manager (VANTOR_RECORD=file, VANTOR_REPLAY=file), or by a test harness.
//
// Replaying, the window's input is ignored (its close request excepted),
// the loop does not sleep unless VANTOR_REPLAY_PACED=1, and every few steps
// the world's fingerprint is compared with the recorded one: the first
// difference ends the game with one line naming the step.
class Recorder {
 public:
  // Steps between two fingerprints of the world in a recording.
  static const int HASH_EVERY = 30;

  static Recorder& getInstance();

  // Starts what VANTOR_RECORD or VANTOR_REPLAY asks for (not both); 0 when
  // neither is set or the one set started.
  int startFromEnvironment();
  // Records into the file from the next step on. 0 on success, -1 (with a
  // log line) when the file cannot be written or something already runs.
  int startRecording(const std::string& file_name);
  // Reads the whole recording and replays it from the next step on. Before
  // the engine starts, the recording's frame time and grid size replace the
  // configured ones; once started, they must match. 0 on success, -1 with
  // a log line for a recording that cannot be read or used. Paced, the
  // loop keeps to the recorded frame time; else it runs as fast as it can.
  int startReplay(const std::string& file_name, bool at_recorded_pace = false);
  // The log line of the last start above that failed.
  std::string getStartFailure() const { return start_failure; }
  // Ends recording or replay: a recording gets its end line; a replay is
  // checked to have run to the recording's last step. Returns 0, or -1 when
  // the replay did not unfold as recorded.
  int stop();

  bool isRecording() const { return mode == RECORDING; }
  bool isReplaying() const { return mode == REPLAYING; }
  // Replaying at the recorded pace instead of as fast as possible.
  bool isPaced() const { return paced; }
  // Set once a replay differed from its recording; the loop then ends.
  bool hasFailed() const { return !failure.empty(); }
  // What differed, or "".
  std::string getFailure() const { return failure; }
  // True when the replay was asked for by the environment: a failed replay
  // then ends the process with a non-zero status after shutdown.
  bool isFromEnvironment() const { return from_environment; }

  // The seed to seed the random numbers with: a replay's recorded seed in
  // place of the configured one.
  long long chooseSeed(long long configured_seed);

  // Called by the loop before reading input: a replay hands the input
  // manager this step's recorded input.
  void beginStep();
  // The path-search turns a replay must run this step.
  int getRecordedPathCalls() const;
  // Called by the loop at the end of an iteration with the path-search
  // turns it ran: records the step's input, or checks the replay.
  void endStep(int path_calls);

  // Called at the end of every recorded or replayed step with its number;
  // for tests that look at chosen steps.
  void setStepObserver(std::function<void(int)> observer) { step_observer = std::move(observer); }

 private:
  enum Mode { OFF, RECORDING, REPLAYING };

  // A fingerprint of the world: every object's id, type, position,
  // velocity and sprite frame, in the world's order.
  std::uint64_t worldHash(int& object_count) const;

  Recorder() = default;
  // Opening and checks common to both modes; false when busy.
  bool isIdle(const char* operation);
  // Keeps the reason a start fails and returns -1.
  int failStart(std::string reason);
  void writeHeader();
  void recordStep(int path_calls);
  void checkStep();
  // Ends the replay as failed: one log line and one line on stderr.
  void fail(const std::string& what);
  // The record of the current step in a replay.
  const StepRecord* currentRecord();
  void reset();

  Mode mode = OFF;
  bool from_environment = false;
  bool paced = false;
  bool header_written = false;
  int step = 0;
  long long seed = -1;
  int first_id = 0;
  std::string file_name;
  std::ofstream out;
  RecordingRun pending;
  bool has_pending = false;
  Recording recording;
  std::size_t run_index = 0;
  std::string failure;
  std::string start_failure;
  std::function<void(int)> step_observer;
};

}  // namespace vt
