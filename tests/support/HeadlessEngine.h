#pragma once

#include <string>

namespace test {

// A fresh temporary directory.
std::string makeTempDir();
std::string readFile(const std::string& path);

// Starts the log (into a temporary directory) and the world manager without
// a window; stops them again on destruction.
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
