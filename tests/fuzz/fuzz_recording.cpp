// Recorded sessions through the reader; what it accepts must write back
// to text that reads the same.
#include <sstream>

#include "FuzzEngine.h"
#include "extras/Recording.h"

namespace {

std::string format(const vt::Recording& recording) {
  std::string text = vt::Recording::formatHeader(recording.getHeader());
  for (const vt::RecordingRun& run : recording.getRuns()) text += vt::Recording::formatRun(run);
  return text + vt::Recording::formatEnd(recording.getEndStep());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream in(fuzz::text(data, size));
  vt::Recording recording;
  if (!recording.read(in).empty()) return 0;
  const std::string written = format(recording);
  std::istringstream again(written);
  vt::Recording reread;
  if (!reread.read(again).empty() || format(reread) != written) __builtin_trap();
  return 0;
}
