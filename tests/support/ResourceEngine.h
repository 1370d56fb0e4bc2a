#pragma once

#include <string>
#include <vector>

#include "support/HeadlessEngine.h"

namespace test {

// A headless engine with the resource manager started and log lines without
// time or step count; the destructor puts every setting back.
class ResourceEngine {
 public:
  ResourceEngine();
  ~ResourceEngine();
  ResourceEngine(const ResourceEngine&) = delete;
  ResourceEngine& operator=(const ResourceEngine&) = delete;

  // Writes the bytes as a file of the temporary folder; returns its path.
  std::string writeFile(const std::string& name, const std::string& bytes) const;
  // A 16-bit mono 8 kHz PCM WAV of a tone whose header claims claimed_count
  // samples (sample_count when negative).
  static std::string wavBytes(int sample_count, long claimed_count = -1);
  std::string writeWav(const std::string& name, int sample_count, long claimed_count = -1) const {
    return writeFile(name, wavBytes(sample_count, claimed_count));
  }
  // Loads the text as sprite <label> from <label>.txt; lastLoadLog() then
  // holds the lines it logged after its checked opening line.
  int loadSpriteText(const std::string& label, const std::string& text);
  const std::vector<std::string>& lastLoadLog() const { return last_load_log; }
  // The log lines written since the previous call.
  std::vector<std::string> newLogLines();
  std::string logText() const { return engine.logText(); }

 private:
  HeadlessEngine engine;
  std::size_t log_bytes_read = 0;
  std::vector<std::string> last_load_log;
};

std::string littleEndian(unsigned long value, int count);

}  // namespace test
