#pragma once

#include <string>
#include <vector>

#include "support/HeadlessEngine.h"

namespace test {

// A headless engine with the resource manager started, a temporary folder
// for the files a test writes, and a log whose lines carry neither time nor
// step count, so that they read exactly as the engine wrote them. The
// destructor puts every setting back to default.
class ResourceEngine {
 public:
  ResourceEngine();
  ~ResourceEngine();
  ResourceEngine(const ResourceEngine&) = delete;
  ResourceEngine& operator=(const ResourceEngine&) = delete;

  // Writes the bytes into a file of that name in the temporary folder and
  // returns its path.
  std::string writeFile(const std::string& name, const std::string& bytes) const;
  // A 16-bit mono 8 kHz PCM WAV file of sample_count samples of a tone in
  // 44 bytes of header and the samples; the header claims claimed_count
  // samples (sample_count when negative).
  static std::string wavBytes(int sample_count, long claimed_count = -1);
  std::string writeWav(const std::string& name, int sample_count, long claimed_count = -1) const {
    return writeFile(name, wavBytes(sample_count, claimed_count));
  }
  // Writes the text as the file <label>.txt and loads it as a sprite of
  // that label; returns what loadSprite returned.
  int loadSpriteText(const std::string& label, const std::string& text);
  // The log lines of the last loadSpriteText after its opening line
  // "RM::loadSprite(): Loading sprite '<path>'.", which is checked.
  const std::vector<std::string>& lastLoadLog() const { return last_load_log; }
  // The log lines written since the previous call.
  std::vector<std::string> newLogLines();
  std::string logText() const { return engine.logText(); }

 private:
  HeadlessEngine engine;
  std::size_t log_bytes_read = 0;
  std::vector<std::string> last_load_log;
};

// The number as count little-endian bytes.
std::string littleEndian(unsigned long value, int count);

}  // namespace test
