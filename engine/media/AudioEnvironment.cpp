#include "media/AudioEnvironment.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/LogManager.h"
#include "media/LogStreamBuf.h"
#include "media/WavReader.h"

namespace vt {

namespace {

const char* const DRIVER_VARIABLE = "ALSOFT_DRIVERS";

// An ALSA playback device node is named pcmC<card>D<device>p.
bool isPlaybackNode(const std::string& name) {
  return name.compare(0, 4, "pcmC") == 0 && name.back() == 'p';
}

// True when device_dir holds an ALSA playback device or runtime_dir a
// PulseAudio socket.
bool hasSoundDevice(const std::string& device_dir, const std::string& runtime_dir) {
  std::error_code error;
  if (!runtime_dir.empty() && std::filesystem::exists(runtime_dir + "/pulse/native", error)) {
    return true;
  }
  for (std::filesystem::directory_iterator entry(device_dir, error), end; !error && entry != end;
       entry.increment(error)) {
    if (isPlaybackNode(entry->path().filename().string())) return true;
  }
  return false;
}

// Sets ALSOFT_DRIVERS to "null" when the user has not set it and this
// machine has no sound device; OpenAL would otherwise flood the terminal
// with errors and spin a core on every playing music.
void chooseDriver() {
  LogManager& log_manager = LogManager::getInstance();
  if (const char* p_drivers = std::getenv(DRIVER_VARIABLE)) {
    log_manager.writeLog(1, "AudioEnvironment::chooseDriver(): %s is '%s'.", DRIVER_VARIABLE,
                         p_drivers);
    return;
  }
  const char* p_runtime_dir = std::getenv("XDG_RUNTIME_DIR");
  if (std::getenv("PULSE_SERVER") != nullptr ||
      hasSoundDevice("/dev/snd", p_runtime_dir ? p_runtime_dir : "")) {
    return;
  }
  setenv(DRIVER_VARIABLE, "null", 0);
  log_manager.writeLog(1, "AudioEnvironment::chooseDriver(): No sound device; audio is silent.");
}

bool prepare() {
  chooseDriver();
  WavReader::registerFirst();
  LogStreamBuf::captureSfmlErrors();
  return true;
}

}  // namespace

AudioEnvironment::AudioEnvironment() {
  static const bool prepared = prepare();
  (void)prepared;
}

}  // namespace vt
