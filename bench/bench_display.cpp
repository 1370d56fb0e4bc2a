// Cost of a full screen of characters (80x24 and 240x67), drawn and shown
// once per iteration in a window on a private Xvfb, with every cell or one
// cell in ten changing, and the memory the loop holds.
#include <benchmark/benchmark.h>

#include <ctime>
#include <fstream>
#include <string>

#include "core/Config.h"
#include "media/DisplayManager.h"
#include "support/TestSupport.h"

namespace {

// A field of /proc/self/status in megabytes, -1 when it cannot be read.
double statusMegabytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  std::string name;
  while (status >> name) {
    double kilobytes = 0;
    if (name == field + ":" && status >> kilobytes) return kilobytes / 1024.0;
    status.ignore(256, '\n');
  }
  return -1;
}

// CPU time of the whole process, the renderer's threads included.
double processCpuMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

// Every cell of the screen drawn; every stride-th one changes its character
// and colour from frame to frame, the others stay as they were.
void drawScreen(vt::DisplayManager& display_manager, int frame, int stride) {
  const int cells = display_manager.getHorizontal() * display_manager.getVertical();
  for (int cell = 0; cell < cells; cell++) {
    const int seed = cell % stride == 0 ? cell + frame : cell;
    const char ch = static_cast<char>('!' + seed % 94);
    const auto color = static_cast<vt::Color>(vt::RED + seed % 7);
    const int x = cell % display_manager.getHorizontal();
    const int y = cell / display_manager.getHorizontal();
    display_manager.drawCh(vt::Vector(static_cast<float>(x), static_cast<float>(y)), ch, color);
  }
}

// Starts the display in a window on the process's X server; false, with the
// benchmark marked skipped, when either does not start.
bool startDisplay(benchmark::State& state, vt::DisplayManager& display_manager) {
  // Room for the largest window measured.
  if (!vt::test::startProcessXvfb("1920x1200x24")) {
    state.SkipWithError("Xvfb did not start");
    return false;
  }
  if (display_manager.startUp() != 0) {
    state.SkipWithError("the display manager did not start");
    return false;
  }
  return true;
}

// One frame per iteration: a grid of cells in a window of pixels, every
// cell drawn, every one or one in ten of them changing, then the buffers
// swapped.
void BM_ScreenFrame(benchmark::State& state) {
  vt::test::TestConfig config(false);
  vt::Config& settings = vt::Config::getInstance();
  settings.setWindowHorizontalChars(static_cast<int>(state.range(0)));
  settings.setWindowVerticalChars(static_cast<int>(state.range(1)));
  settings.setWindowHorizontalPixels(static_cast<int>(state.range(2)));
  settings.setWindowVerticalPixels(static_cast<int>(state.range(3)));
  vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
  if (!startDisplay(state, display_manager)) return;
  const int stride = static_cast<int>(state.range(4));
  int frame = 0;
  const double cpu_start = processCpuMilliseconds();
  for (auto _ : state) {
    drawScreen(display_manager, frame++, stride);
    display_manager.swapBuffers();
  }
  state.counters["process_cpu_ms"] =
      benchmark::Counter((processCpuMilliseconds() - cpu_start) / frame);
  state.counters["VmRSS_MB"] = statusMegabytes("VmRSS");
  state.counters["VmHWM_MB"] = statusMegabytes("VmHWM");
  display_manager.shutDown();
}
BENCHMARK(BM_ScreenFrame)
    ->ArgNames({"columns", "rows", "width", "height", "changing_stride"})
    ->Args({80, 24, 1024, 768, 1})
    ->Args({80, 24, 1024, 768, 10})
    ->Args({240, 67, 1920, 1072, 1})
    ->Args({240, 67, 1920, 1072, 10})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(3.0);

// One frame per iteration: a bordered score line drawn over itself as many
// times as there are score displays stacked in one place (the shooter adds
// one each game).
void BM_StackedScoreFrame(benchmark::State& state) {
  vt::test::TestConfig config(false);
  vt::DisplayManager& display_manager = vt::DisplayManager::getInstance();
  if (!startDisplay(state, display_manager)) return;
  const int stacked = static_cast<int>(state.range(0));
  int frame = 0;
  const double cpu_start = processCpuMilliseconds();
  for (auto _ : state) {
    for (int i = 0; i < stacked; i++) {
      const std::string score = " Points " + std::to_string(1000 + i) + " ";
      for (int row = 0; row < 3; row++) {
        display_manager.drawString(vt::Vector(66, static_cast<float>(row)),
                                   row == 1 ? score : std::string(score.size(), '-'),
                                   vt::CENTER_JUSTIFIED, vt::YELLOW);
      }
    }
    display_manager.swapBuffers();
    frame++;
  }
  state.counters["process_cpu_ms"] =
      benchmark::Counter((processCpuMilliseconds() - cpu_start) / frame);
  display_manager.shutDown();
}
BENCHMARK(BM_StackedScoreFrame)
    ->ArgName("stacked")
    ->Arg(1)
    ->Arg(100)
    ->Arg(300)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
