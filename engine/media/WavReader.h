#pragma once

#include <SFML/Audio/SoundFileReader.hpp>
#include <SFML/System/InputStream.hpp>

namespace vt {

// Reads 16-bit PCM WAV files for SFML's sound buffers and music streams.
// Placed ahead of SFML's own readers, it spares such files SFML's FLAC
// probe, which reads a whole file before giving up on it. A header that
// claims more samples than the file holds is cut to what it holds. Well-formed
// WAV files of 8-, 24- or 32-bit PCM samples are left to SFML; every other
// WAV file is refused here, since SFML's own reader divides by zero on some
// (samples before the format) and sizes buffers from absurd rates.
class WavReader : public sf::SoundFileReader {
 public:
  // Puts this reader first; takes effect when called before SFML opens its
  // first sound file, and leaves it last (so unused) otherwise.
  static void registerFirst();
  // True for a RIFF WAVE file that is not one left to SFML.
  static bool check(sf::InputStream& stream);

  bool open(sf::InputStream& stream, Info& info) override;
  void seek(sf::Uint64 sample_offset) override;
  sf::Uint64 read(sf::Int16* samples, sf::Uint64 max_count) override;

 private:
  struct Layout {
    bool has_format = false;  // a whole format chunk before the samples
    unsigned int format_tag = 0;
    unsigned int channel_count = 0;
    unsigned int sample_rate = 0;
    unsigned int block_align = 0;
    unsigned int bits_per_sample = 0;
    bool has_data = false;
    sf::Int64 data_start = 0;
    sf::Uint64 data_size = 0;
  };

  // Reads the chunks up to the samples; false unless a RIFF WAVE file.
  static bool readLayout(sf::InputStream& stream, Layout& layout);
  static void readFormat(sf::InputStream& stream, sf::Uint64 chunk_size, Layout& layout);
  // Whole PCM frames of bits_per_sample bits in a sane number of channels
  // at a sane rate.
  static bool isPcm(const Layout& layout, unsigned int bits_per_sample);
  static bool isLeftToSfml(const Layout& layout);

  sf::Uint64 sample_count = 0;

  sf::InputStream* p_stream = nullptr;
  Layout layout;
  sf::Uint64 position = 0;
};

}  // namespace vt
