#include "Mix.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <functional>

#include "Tone.h"

namespace synth {

namespace {

constexpr int BYTES_PER_SAMPLE = 2;

void putLittleEndian(std::ofstream& out, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.put(static_cast<char>((value >> (8 * i)) & 0xffu));
}

void putHeader(std::ofstream& out, std::uint32_t data_bytes) {
  out.write("RIFF", 4);
  putLittleEndian(out, 36 + data_bytes, 4);
  out.write("WAVEfmt ", 8);
  putLittleEndian(out, 16, 4);  // size of the format chunk
  putLittleEndian(out, 1, 2);   // integer PCM
  putLittleEndian(out, 1, 2);   // one channel
  putLittleEndian(out, SAMPLE_RATE, 4);
  putLittleEndian(out, SAMPLE_RATE * BYTES_PER_SAMPLE, 4);
  putLittleEndian(out, BYTES_PER_SAMPLE, 2);
  putLittleEndian(out, 8 * BYTES_PER_SAMPLE, 2);
  out.write("data", 4);
  putLittleEndian(out, data_bytes, 4);
}

std::uint32_t toPcm(float sample) {
  const long value = std::lround(std::clamp(sample, -1.0f, 1.0f) * 32767.0f);
  return static_cast<std::uint32_t>(static_cast<std::uint16_t>(static_cast<std::int16_t>(value)));
}

}  // namespace

void mixAt(std::vector<float>& buffer, const std::vector<float>& sound, std::size_t offset) {
  buffer.resize(std::max(buffer.size(), offset + sound.size()));
  std::transform(sound.begin(), sound.end(), buffer.begin() + static_cast<std::ptrdiff_t>(offset),
                 buffer.begin() + static_cast<std::ptrdiff_t>(offset), std::plus<float>());
}

void mixWrapped(std::vector<float>& buffer, const std::vector<float>& sound, std::size_t offset) {
  if (buffer.empty()) return;
  for (std::size_t i = 0; i < sound.size(); ++i) buffer[(offset + i) % buffer.size()] += sound[i];
}

void normalize(std::vector<float>& buffer, float peak) {
  float loudest = 0.0f;
  for (float sample : buffer) loudest = std::max(loudest, std::abs(sample));
  if (loudest <= 0.0f) return;
  for (float& sample : buffer) sample *= peak / loudest;
}

bool writeWav(const std::string& path, const std::vector<float>& samples) {
  std::ofstream out(path, std::ios::binary);
  if (!out) return false;
  putHeader(out, static_cast<std::uint32_t>(samples.size() * BYTES_PER_SAMPLE));
  for (float sample : samples) putLittleEndian(out, toPcm(sample), BYTES_PER_SAMPLE);
  return static_cast<bool>(out);
}

}  // namespace synth
