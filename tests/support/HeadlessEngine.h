#pragma once

#include <functional>
#include <string>
#include <vector>

namespace test {

// A fresh temporary folder.
std::string makeTempDir();
std::string readFile(const std::string& path);
// Asks again every 10 ms until the condition holds or the seconds are up;
// true when it held.
bool waitFor(const std::function<bool()>& condition, double seconds = 10);

// The value's count lowest bytes, lowest first.
std::string littleEndian(unsigned long value, int count);
// A 16-bit mono 8 kHz PCM WAV of a tone whose header claims claimed_count
// samples (sample_count when negative).
std::string wavBytes(int sample_count, long claimed_count = -1);

// Puts back the settings tests change: the configuration's defaults, the
// log's level, line prefixes and flushing, the game-over flag and the
// environment overrides of the configuration and log files.
void restoreEngineSettings();

// The engine started in part, its log in a temporary folder: the log alone
// (with the test font, flushed line by line, for tests that open a window),
// the log and the world, or those and the resource manager (its log lines
// without time or step count). The destructor stops what it started, puts
// every setting back and removes the folder.
class HeadlessEngine {
 public:
  enum Managers { LOG_ONLY, WORLD, WORLD_AND_RESOURCES };
  explicit HeadlessEngine(Managers managers = WORLD, bool headless = true);
  ~HeadlessEngine();
  HeadlessEngine(const HeadlessEngine&) = delete;
  HeadlessEngine& operator=(const HeadlessEngine&) = delete;

  const std::string& getDirectory() const { return directory; }
  std::string logPath() const { return directory + "/vantor.log"; }
  // Everything written to the log so far.
  std::string logText() const;
  // The log lines written since the previous call.
  std::vector<std::string> newLogLines();
  // Writes the bytes as a file of the temporary folder; returns its path.
  std::string writeFile(const std::string& name, const std::string& bytes) const;
  // Loads the text as sprite <label> from <label>.txt; lastLoadLog() then
  // holds the lines it logged after its checked opening line.
  int loadSpriteText(const std::string& label, const std::string& text);
  const std::vector<std::string>& lastLoadLog() const { return last_load_log; }

 private:
  Managers managers;
  std::string directory;
  std::size_t log_bytes_read = 0;
  std::vector<std::string> last_load_log;
};

}  // namespace test
