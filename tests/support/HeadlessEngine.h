#pragma once

#include <functional>
#include <string>
#include <vector>

#include "extras/Harness.h"
#include "world/Object.h"

namespace test {

// A fresh temporary folder, removed when the process exits.
std::string makeTempDir();
std::string readFile(const std::string& path);
// Asks again every 10 ms until the condition holds or the seconds are up; true when it held.
bool waitFor(const std::function<bool()>& condition, double seconds = 10);
// Writes the text as a configuration file of a fresh temporary folder and
// names it in VANTOR_CONFIG; returns its path.
std::string writeConfig(const std::string& text);
// Each object as type@altitude/solidness:answers, the objects joined by blanks: the answers of its
// handler (1 handled, 0 not) to a step, an out event, a key, a mouse move and a view event.
std::string describeRoles(const std::vector<vt::Object*>& objects);

// Puts back the settings tests change: the configuration's defaults, the
// log's level, line prefixes and flushing, the game-over flag and the
// environment overrides of the configuration and log files.
void restoreEngineSettings();

// The engine started in part, its log in a temporary folder: the log alone (with the test font,
// flushed line by line, for tests that open a window), the log and the world, or those and the
// resource manager (its log lines without time or step count). The destructor stops what it started
// and puts every setting back.
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

 private:
  Managers managers;
  std::string directory;
  std::size_t log_bytes_read = 0;
};

}  // namespace test
