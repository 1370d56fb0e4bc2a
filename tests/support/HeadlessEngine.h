#pragma once

#include <string>

namespace test {

// A fresh temporary directory.
std::string makeTempDir();
std::string readFile(const std::string& path);

// Puts back the settings tests change: the configuration's defaults, the
// log's level and line prefixes, the game-over flag and the environment
// overrides of the configuration and log files.
void restoreEngineSettings();

// Starts the log (into a temporary directory) and the world manager without
// a window; stops them again and restores the engine's settings on destruction.
class HeadlessEngine {
 public:
  HeadlessEngine();
  ~HeadlessEngine();
  HeadlessEngine(const HeadlessEngine&) = delete;
  HeadlessEngine& operator=(const HeadlessEngine&) = delete;

  std::string logPath() const;
  // Everything written to the log so far.
  std::string logText() const;
  const std::string& getDirectory() const { return directory; }

 private:
  std::string directory;
};

}  // namespace test
