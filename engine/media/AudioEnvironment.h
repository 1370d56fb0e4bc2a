#pragma once

namespace vt {

// Prepares the audio back end once per process, before the first SFML audio
// object opens the device: selects OpenAL's silent driver on a machine
// without a sound device, sends SFML's error stream to the log and puts
// the engine's WAV reader ahead of SFML's sound file readers. Classes
// that hold SFML audio objects derive from it, so that its constructor runs
// before those objects are built.
class AudioEnvironment {
 protected:
  AudioEnvironment();
};

}  // namespace vt
