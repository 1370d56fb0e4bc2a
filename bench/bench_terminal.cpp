// What the terminal presenter writes and how long it takes: for the shooter
// in play (a recorded ten-minute session replayed headless, each step's
// frame presented), and for frames where every cell changes, at 80x24 and
// 240x67. The bytes go to /dev/null: the time is the presenter's own.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <string>

#include "Setup.h"
#include "extras/Harness.h"
#include "extras/Recording.h"
#include "media/DisplayManager.h"
#include "media/TerminalScreen.h"

namespace {

const char* const SESSION = VANTOR_SESSIONS_DIR "/ten-minutes.vrec";

// Counts what a terminal would be sent: bytes, frames, changed cells, and
// the time taken to work them out and write them.
class Presenter {
 public:
  explicit Presenter(int columns, int rows) : null_fd(open("/dev/null", O_WRONLY)) {
    screen.setColorMode(vt::TerminalScreen::COLORS_24BIT);
    screen.setSize(columns, rows);
  }
  ~Presenter() { close(null_fd); }

  void present(const vt::CellFrame& frame) {
    const auto start = std::chrono::steady_clock::now();
    const std::string bytes = screen.render(frame);
    if (!bytes.empty() && write(null_fd, bytes.data(), bytes.size()) < 0) return;
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    written += static_cast<double>(bytes.size());
    changed += changedCells(frame);
    frames++;
    last = frame;
  }

  void report(benchmark::State& state) const {
    state.counters["bytes_per_frame"] = written / frames;
    state.counters["bytes_per_changed_cell"] = changed > 0 ? written / changed : 0;
    state.counters["changed_cells_per_frame"] = changed / frames;
    state.counters["presenter_ms_per_frame"] = 1000 * seconds / frames;
  }

 private:
  double changedCells(const vt::CellFrame& frame) const {
    double count = 0;
    for (int row = 0; row < frame.getRows(); row++) {
      for (int column = 0; column < frame.getColumns(); column++) {
        const vt::CellFrame::Cell now = frame.at(column, row);
        const vt::CellFrame::Cell before = last.at(column, row);
        const char shown_now = now.drawn ? now.ch : ' ';
        const char shown_before = before.drawn ? before.ch : ' ';
        if (frames == 0 || shown_now != shown_before ||
            (shown_now != ' ' && (now.r != before.r || now.g != before.g || now.b != before.b))) {
          count++;
        }
      }
    }
    return count;
  }

  int null_fd;
  vt::TerminalScreen screen;
  vt::CellFrame last;
  double written = 0;
  double changed = 0;
  double frames = 0;
  double seconds = 0;
};

void BM_TerminalShooterInPlay(benchmark::State& state) {
  if (chdir(VANTOR_GAME_DIR) != 0) {
    state.SkipWithError("cannot enter the game's folder");
    return;
  }
  Presenter presenter(80, 24);
  for (auto _ : state) {
    vt::Harness harness;
    if (harness.startUp() != 0 || harness.replay(SESSION) != 0) {
      state.SkipWithError("cannot replay the session");
      return;
    }
    std::ifstream in(SESSION);
    vt::Recording recording;
    recording.read(in);
    const int steps = recording.getEndStep();
    for (int step = 1; step <= steps; step++) {
      harness.atStep(
          step, [&presenter] { presenter.present(vt::DisplayManager::getInstance().getFrame()); });
    }
    playGame();
    harness.finishReplay();
  }
  presenter.report(state);
}
BENCHMARK(BM_TerminalShooterInPlay)->Unit(benchmark::kMillisecond)->Iterations(1);

// Two frames in which every cell differs, in colours that change every
// eight cells as they do along a line of text.
void BM_TerminalEveryCellChanges(benchmark::State& state) {
  const int columns = static_cast<int>(state.range(0));
  const int rows = static_cast<int>(state.range(1));
  vt::CellFrame frames[2];
  for (int which = 0; which < 2; which++) {
    frames[which].reset(columns, rows, vt::BLACK);
    for (int cell = 0; cell < columns * rows; cell++) {
      unsigned char r = 0;
      unsigned char g = 0;
      unsigned char b = 0;
      vt::colorToRGB(static_cast<vt::Color>(vt::RED + (cell / 8 + which) % 7), r, g, b);
      frames[which].put(
          vt::Vector(static_cast<float>(cell % columns), static_cast<float>(cell / columns)),
          static_cast<char>('!' + (cell + which) % 94), r, g, b);
    }
  }
  Presenter presenter(columns, rows);
  int frame = 0;
  for (auto _ : state) presenter.present(frames[frame++ % 2]);
  presenter.report(state);
}
BENCHMARK(BM_TerminalEveryCellChanges)
    ->Args({80, 24})
    ->Args({240, 67})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
