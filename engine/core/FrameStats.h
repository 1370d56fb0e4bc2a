#pragma once

#include <cstdint>
#include <cstdio>

#include "core/Clock.h"

namespace vt {

// The parts of one step of the game loop, in the loop's order.
enum FramePart {
  STEP_EVENTS_PART,
  INPUT_PART,
  NETWORK_PART,
  UPDATE_PART,
  DRAW_PART,
  PATHS_PART,
  SLEEP_PART,
  FRAME_PART_COUNT,
};

// Times each step of the game loop part by part. F12 shows the last step's
// times on the top line of the screen, over everything; VANTOR_STATS=file.csv
// writes every step's times to that file, one row a step.
class FrameStats {
 public:
  static FrameStats& getInstance();
  FrameStats(const FrameStats&) = delete;
  FrameStats& operator=(const FrameStats&) = delete;

  // Opens the file named by VANTOR_STATS, if any; a file that cannot be
  // written is logged and the game goes on without it.
  void startUp();
  // Closes the file and hides the overlay.
  void shutDown();

  // A step starts: its first part starts now.
  void beginStep();
  // The part ends now; the next starts.
  void endPart(FramePart part);
  // The step is over: its times become the last step's, and a row of the file.
  void endStep(int step_count);

  void toggleOverlay() { overlay_shown = !overlay_shown; }
  bool isOverlayShown() const { return overlay_shown; }
  // Draws the last step's times and the objects in the world now on the
  // top line when the overlay is shown.
  void drawOverlay() const;

 private:
  // What one step of the loop took, in microseconds, part by part and in all.
  struct StepTimes {
    int step = 0;
    std::uint32_t part[FRAME_PART_COUNT] = {};
    std::uint32_t total = 0;
  };

  FrameStats() = default;
  ~FrameStats();

  // One row of the file: the last step's times and the objects in the world.
  void writeRow() const;

  Clock clock;
  StepTimes current_step;
  StepTimes last_step;
  bool overlay_shown = false;
  FILE* p_file = nullptr;
};

}  // namespace vt
