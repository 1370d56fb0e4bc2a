// Configuration text through Config::loadConfig, and the same text through
// the matcher with the keys the engine reads.
#include "FuzzEngine.h"
#include "core/Config.h"
#include "core/Match.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::startEngine();
  const std::string text = fuzz::text(data, size);
  vt::Config& config = vt::Config::getInstance();
  config.loadConfig(text);
  config.setHeadless(true);
  for (const char* key : {"frame_time", "window_style", ""}) {
    vt::match(text, key);
    vt::match("", key);
    vt::matchKeepingBlanks(text, key);
  }
  return 0;
}
