#include "media/WavReader.h"

#include <SFML/Audio/SoundFileFactory.hpp>
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/LogManager.h"

namespace vt {

namespace {

const unsigned int PCM = 1;
const unsigned int EXTENSIBLE = 0xFFFE;
const unsigned int BYTES_PER_SAMPLE = 2;
const unsigned int MAX_CHANNELS = 8;
const unsigned int MAX_SAMPLE_RATE = 384000;
// Bytes of the format chunk read: tag, channels, rate, byte rate, block
// alignment and bits per sample.
const int FORMAT_BYTES = 16;

// The little-endian unsigned number in count bytes.
sf::Uint64 number(const unsigned char* bytes, int count) {
  sf::Uint64 value = 0;
  for (int i = count - 1; i >= 0; i--) value = (value << 8) | bytes[i];
  return value;
}

bool readBytes(sf::InputStream& stream, unsigned char* bytes, sf::Int64 count) {
  return stream.read(bytes, count) == count;
}

}  // namespace

void WavReader::registerFirst() {
  sf::SoundFileFactory::registerReader<WavReader>();
}

bool WavReader::check(sf::InputStream& stream) {
  Layout layout;
  return readLayout(stream, layout) && !isLeftToSfml(layout);
}

bool WavReader::open(sf::InputStream& stream, Info& info) {
  if (!readLayout(stream, layout) || !isPcm(layout, 8 * BYTES_PER_SAMPLE) || !layout.has_data) {
    LogManager::getInstance().writeLog(
        "WavReader::open(): Error! Not a WAV file of 8, 16, 24 or 32-bit PCM samples in 1 to %u "
        "channels.",
        MAX_CHANNELS);
    return false;
  }
  p_stream = &stream;
  const sf::Uint64 held =
      static_cast<sf::Uint64>(std::max<sf::Int64>(stream.getSize() - layout.data_start, 0));
  sample_count = std::min(layout.data_size, held) / layout.block_align * layout.channel_count;
  info.sampleCount = sample_count;
  info.channelCount = layout.channel_count;
  info.sampleRate = layout.sample_rate;
  seek(0);
  return true;
}

void WavReader::seek(sf::Uint64 sample_offset) {
  position = std::min(sample_offset, sample_count);
  p_stream->seek(layout.data_start + static_cast<sf::Int64>(position * BYTES_PER_SAMPLE));
}

sf::Uint64 WavReader::read(sf::Int16* samples, sf::Uint64 max_count) {
  const sf::Uint64 count = std::min(max_count, sample_count - position);
  auto* p_bytes = reinterpret_cast<unsigned char*>(samples);
  const sf::Int64 got = std::max<sf::Int64>(
      p_stream->read(p_bytes, static_cast<sf::Int64>(count * BYTES_PER_SAMPLE)), 0);
  const auto samples_read = static_cast<sf::Uint64>(got) / BYTES_PER_SAMPLE;
  for (sf::Uint64 i = 0; i < samples_read; i++) {
    const auto value = static_cast<std::uint16_t>(number(p_bytes + 2 * i, 2));
    std::memcpy(samples + i, &value, sizeof(value));
  }
  position += samples_read;
  return samples_read;
}

bool WavReader::readLayout(sf::InputStream& stream, Layout& layout) {
  unsigned char riff[12];
  if (stream.seek(0) != 0 || !readBytes(stream, riff, sizeof(riff)) ||
      std::memcmp(riff, "RIFF", 4) != 0 || std::memcmp(riff + 8, "WAVE", 4) != 0) {
    return false;
  }
  unsigned char chunk[8];
  while (readBytes(stream, chunk, sizeof(chunk))) {
    const sf::Uint64 size = number(chunk + 4, 4);
    const sf::Int64 start = stream.tell();
    if (std::memcmp(chunk, "data", 4) == 0) {
      layout.has_data = true;
      layout.data_start = start;
      layout.data_size = size;
      return true;
    }
    if (std::memcmp(chunk, "fmt ", 4) == 0) readFormat(stream, size, layout);
    // Chunks are padded to an even length.
    if (stream.seek(start + static_cast<sf::Int64>(size + (size & 1))) < 0) return true;
  }
  return true;
}

void WavReader::readFormat(sf::InputStream& stream, sf::Uint64 chunk_size, Layout& layout) {
  unsigned char format[FORMAT_BYTES];
  if (chunk_size < FORMAT_BYTES || !readBytes(stream, format, FORMAT_BYTES)) return;
  layout.has_format = true;
  layout.format_tag = static_cast<unsigned int>(number(format, 2));
  layout.channel_count = static_cast<unsigned int>(number(format + 2, 2));
  layout.sample_rate = static_cast<unsigned int>(number(format + 4, 4));
  layout.block_align = static_cast<unsigned int>(number(format + 12, 2));
  layout.bits_per_sample = static_cast<unsigned int>(number(format + 14, 2));
}

bool WavReader::isPcm(const Layout& layout, unsigned int bits_per_sample) {
  return layout.has_format && (layout.format_tag == PCM || layout.format_tag == EXTENSIBLE) &&
         layout.bits_per_sample == bits_per_sample && layout.channel_count >= 1 &&
         layout.channel_count <= MAX_CHANNELS && layout.sample_rate >= 1 &&
         layout.sample_rate <= MAX_SAMPLE_RATE &&
         layout.block_align == bits_per_sample / 8 * layout.channel_count;
}

bool WavReader::isLeftToSfml(const Layout& layout) {
  return isPcm(layout, 8) || isPcm(layout, 24) || isPcm(layout, 32);
}

}  // namespace vt
