// Cost of a full screen of characters (80x24 and 240x67), drawn and shown
// once per iteration in a window on the X display of DISPLAY, with every
// cell or one cell in ten changing, and the memory the loop holds. Without
// a display, run it on a virtual one with room for the largest window:
//   xvfb-run -a -s "-screen 0 1920x1200x24" build/bench/bench_display
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>

#include "core/Config.h"
#include "core/LogManager.h"
#include "media/DisplayManager.h"

namespace {

const char* const XVFB_COMMAND =
    "xvfb-run -a -s \"-screen 0 1920x1200x24\" build/bench/bench_display";

// The log, in a fresh temporary folder, and the settings of a window in the
// built font; the destructor stops the log, removes the folder and puts the
// settings back to their defaults.
class WindowLog {
 public:
  WindowLog() {
    vt::Config& config = vt::Config::getInstance();
    config.reset();
    config.setHeadless(false);
    config.setFontFile(VANTOR_FONT_PATH);
    std::string pattern = (std::filesystem::temp_directory_path() / "vantor-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) return;
    folder = pattern;
    config.setLogFile(folder + "/vantor.log");
    vt::LogManager::getInstance().startUp();
  }
  ~WindowLog() {
    vt::LogManager::getInstance().shutDown();
    vt::Config::getInstance().reset();
    if (!folder.empty()) std::filesystem::remove_all(folder);
  }
  WindowLog(const WindowLog&) = delete;
  WindowLog& operator=(const WindowLog&) = delete;

 private:
  std::string folder;
};

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

// Starts the display in a window on the X display of DISPLAY; false, with
// the benchmark marked skipped, when there is none or the window does not
// open.
bool startDisplay(benchmark::State& state, vt::DisplayManager& display_manager) {
  const char* p_display = std::getenv("DISPLAY");
  if (p_display == nullptr || *p_display == '\0') {
    state.SkipWithError(std::string("DISPLAY is not set: run it as ").append(XVFB_COMMAND).c_str());
    return false;
  }
  if (display_manager.startUp() != 0) {
    state.SkipWithError(std::string("the display manager did not start on DISPLAY=")
                            .append(p_display)
                            .append(": run it as ")
                            .append(XVFB_COMMAND)
                            .c_str());
    return false;
  }
  return true;
}

// One frame per iteration: a grid of cells in a window of pixels, every
// cell drawn, every one or one in ten of them changing, then the buffers
// swapped.
void BM_ScreenFrame(benchmark::State& state) {
  const WindowLog log;
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
  const WindowLog log;
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
