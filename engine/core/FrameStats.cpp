#include "core/FrameStats.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/LogManager.h"
#include "media/DisplayManager.h"
#include "world/WorldManager.h"

namespace vt {

namespace {

const char* const STATS_VARIABLE = "VANTOR_STATS";

const char* const CSV_HEADER =
    "step,step_events_us,input_us,network_us,update_us,draw_us,paths_us,sleep_us,frame_us,"
    "objects\n";

// The overlay's labels, one a part, in the order of FramePart.
const char* const OVERLAY_LABELS[FRAME_PART_COUNT] = {"events", "input", "net",  "update",
                                                      "draw",   "paths", "sleep"};

int objectsAlive() {
  return WorldManager::getInstance().getAllObjects(true).getCount();
}

double milliseconds(std::uint32_t microseconds) {
  return static_cast<double>(microseconds) / 1000.0;
}

std::string overlayText(const std::uint32_t (&part_times)[FRAME_PART_COUNT], int objects) {
  std::string text;
  char item[48];
  for (int part = 0; part < FRAME_PART_COUNT; part++) {
    std::snprintf(item, sizeof(item), "%s %.1f ", OVERLAY_LABELS[part],
                  milliseconds(part_times[part]));
    text += item;
  }
  std::snprintf(item, sizeof(item), "objs %d", objects);
  return text + item;
}

}  // namespace

FrameStats& FrameStats::getInstance() {
  static FrameStats frame_stats;
  return frame_stats;
}

FrameStats::~FrameStats() {
  shutDown();
}

void FrameStats::startUp() {
  const char* p_file_name = std::getenv(STATS_VARIABLE);
  if (p_file_name == nullptr || *p_file_name == '\0' || p_file != nullptr) return;
  p_file = std::fopen(p_file_name, "w");
  if (p_file == nullptr || std::fputs(CSV_HEADER, p_file) < 0) {
    const char* p_reason = std::strerror(errno);
    LogManager::getInstance().writeLog(
        "FrameStats::startUp(): Warning! Cannot write the frame stats to '%s' (%s); the game "
        "goes on without them.",
        p_file_name, p_reason);
    std::fprintf(stderr, "vantor: cannot write the frame stats to '%s' (%s); the game goes on\n",
                 p_file_name, p_reason);
    shutDown();
  }
}

void FrameStats::shutDown() {
  if (p_file != nullptr) std::fclose(p_file);
  p_file = nullptr;
  overlay_shown = false;
}

void FrameStats::beginStep() {
  current_step = StepTimes();
  clock.delta();
}

void FrameStats::endPart(FramePart part) {
  const std::uint32_t spent = clock.delta();
  current_step.part[part] += spent;
  current_step.total += spent;
}

void FrameStats::endStep(int step_count) {
  current_step.total += clock.delta();
  current_step.step = step_count;
  last_step = current_step;
  if (p_file != nullptr) writeRow();
}

// Flushed every step, so that a game that is killed leaves every finished
// step's row.
void FrameStats::writeRow() const {
  const StepTimes& times = last_step;
  std::fprintf(p_file, "%d", times.step);
  for (const std::uint32_t part : times.part) std::fprintf(p_file, ",%u", part);
  std::fprintf(p_file, ",%u,%d\n", times.total, objectsAlive());
  std::fflush(p_file);
}

void FrameStats::drawOverlay() const {
  if (!overlay_shown) return;
  DisplayManager& display_manager = DisplayManager::getInstance();
  std::string text = overlayText(last_step.part, objectsAlive());
  // Blanks to the edge, so that nothing drawn below shows between the words.
  text.resize(static_cast<std::size_t>(std::max(display_manager.getHorizontal(), 0)), ' ');
  display_manager.drawString(viewToWorld(Vector(0, 0)), text, LEFT_JUSTIFIED, WHITE);
}

}  // namespace vt
