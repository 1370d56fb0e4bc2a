#pragma once

#include <string>

namespace vt {

// Prepares the audio back end once per process, before the first SFML audio
// object opens the device: selects OpenAL's silent driver on a machine
// without a sound device, sends SFML's error stream to the log and puts
// the engine's WAV reader ahead of SFML's sound file readers. Classes
// that hold SFML audio objects derive from it, so that its constructor runs
// before those objects are built.
class AudioEnvironment {
 public:
  // True when device_dir (normally /dev/snd) holds an ALSA playback device
  // or runtime_dir (normally $XDG_RUNTIME_DIR) a PulseAudio socket.
  static bool hasSoundDevice(const std::string& device_dir, const std::string& runtime_dir);
  // Sets ALSOFT_DRIVERS to "null" when the user has not set it and this
  // machine has no sound device; OpenAL would otherwise flood the terminal
  // with errors and spin a core on every playing music.
  static void chooseDriver();

 protected:
  AudioEnvironment();
};

}  // namespace vt
