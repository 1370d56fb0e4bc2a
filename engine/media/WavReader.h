#pragma once

#include <SFML/Audio/SoundFileReader.hpp>
#include <SFML/System/InputStream.hpp>

namespace vt {

// Reads 16-bit PCM WAV files for SFML's sound buffers and music streams.
// Placed ahead of SFML's own readers, it spares such files SFML's FLAC
// probe, which reads a whole file before giving up on it. A header that
// claims more samples than the file holds is cut to what it holds. Other
// files are left to SFML.
class WavReader : public sf::SoundFileReader {
 public:
  // Puts this reader first; takes effect when called before SFML opens its
  // first sound file, and leaves it last (so unused) otherwise.
  static void registerFirst();
  // True for a RIFF WAVE file of 16-bit PCM samples.
  static bool check(sf::InputStream& stream);

  bool open(sf::InputStream& stream, Info& info) override;
  void seek(sf::Uint64 sample_offset) override;
  sf::Uint64 read(sf::Int16* samples, sf::Uint64 max_count) override;

 private:
  struct Layout {
    unsigned int channel_count = 0;
    unsigned int sample_rate = 0;
    sf::Int64 data_start = 0;
    sf::Uint64 sample_count = 0;
  };

  // Finds the format and the samples; false unless they are 16-bit PCM.
  static bool readLayout(sf::InputStream& stream, Layout& layout);
  static bool readFormat(sf::InputStream& stream, sf::Uint64 chunk_size, Layout& layout);

  sf::InputStream* p_stream = nullptr;
  Layout layout;
  sf::Uint64 position = 0;
};

}  // namespace vt
