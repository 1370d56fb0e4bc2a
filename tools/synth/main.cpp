// The game's sound synthesizer: writes each named WAV file, choosing what to
// play by the file's name.
//
//   synth OUTPUT.wav...

#include <exception>
#include <iostream>
#include <string>

#include "Library.h"
#include "Mix.h"

namespace {

std::string baseName(const std::string& path) {
  return path.substr(path.find_last_of('/') + 1);
}

int writeOne(const std::string& path) {
  if (synth::writeWav(path, synth::make(baseName(path)))) return 0;
  std::cerr << "synth: cannot write '" << path << "'\n";
  return 1;
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc < 2) {
    std::cerr << "usage: synth OUTPUT.wav...\n";
    return 1;
  }
  try {
    int failures = 0;
    for (int i = 1; i < argc; ++i) failures += writeOne(argv[i]);
    return failures == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "synth: " << error.what() << "\n";
    return 1;
  }
}
