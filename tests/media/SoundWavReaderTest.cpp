#include <gtest/gtest.h>

#include <SFML/Audio.hpp>
#include <SFML/System/MemoryInputStream.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "media/Music.h"
#include "media/Sound.h"
#include "media/WavReader.h"
#include "support/ResourceEngine.h"

using Lines = std::vector<std::string>;
using Samples = std::vector<sf::Int16>;

namespace {

std::string littleEndian(std::uint32_t value, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; i++) text.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
  return text;
}

std::string chunk(const std::string& id, const std::string& body, std::uint32_t claimed_size) {
  const std::string padding = body.size() % 2 == 1 ? std::string(1, '\0') : "";
  return id + littleEndian(claimed_size, 4) + body + padding;
}

std::string chunk(const std::string& id, const std::string& body) {
  return chunk(id, body, static_cast<std::uint32_t>(body.size()));
}

// A format chunk's body: tag, channels, rate, byte rate, alignment, bits,
// and a two-byte extension size as some writers add.
std::string format(int tag, int channels, int rate, int bits) {
  const int align = channels * bits / 8;
  return littleEndian(tag, 2) + littleEndian(channels, 2) + littleEndian(rate, 4) +
         littleEndian(rate * align, 4) + littleEndian(align, 2) + littleEndian(bits, 2) +
         littleEndian(0, 2);
}

std::string riff(const std::string& chunks) {
  return "RIFF" + littleEndian(static_cast<std::uint32_t>(4 + chunks.size()), 4) + "WAVE" + chunks;
}

std::string pcm16(const Samples& samples) {
  std::string bytes;
  for (const sf::Int16 sample : samples)
    bytes += littleEndian(static_cast<std::uint16_t>(sample), 2);
  return bytes;
}

const Samples STEREO = {0, 1, -1, 32767, -32768, 258, 5, -5};

bool check(const std::string& bytes) {
  sf::MemoryInputStream stream;
  stream.open(bytes.data(), bytes.size());
  return vt::WavReader::check(stream);
}

}  // namespace

TEST(SoundWavReader, ReadsSixteenBitPcm) {
  const std::string bytes = riff(chunk("LIST", "odd") + chunk("fmt ", format(1, 2, 8000, 16)) +
                                 chunk("data", pcm16(STEREO)));
  EXPECT_TRUE(check(bytes));
  sf::MemoryInputStream stream;
  stream.open(bytes.data(), bytes.size());
  stream.seek(30);
  vt::WavReader reader;
  sf::SoundFileReader::Info info{};
  ASSERT_TRUE(reader.open(stream, info));
  EXPECT_EQ(info.sampleCount, 8u);
  EXPECT_EQ(info.channelCount, 2u);
  EXPECT_EQ(info.sampleRate, 8000u);
  Samples samples(20, 99);
  EXPECT_EQ(reader.read(samples.data(), 20), 8u);
  samples.resize(8);
  EXPECT_EQ(samples, STEREO);
  EXPECT_EQ(reader.read(samples.data(), 20), 0u);
  reader.seek(6);
  EXPECT_EQ(reader.read(samples.data(), 1), 1u);
  EXPECT_EQ(samples[0], 5);
  EXPECT_EQ(reader.read(samples.data(), 20), 1u);
  EXPECT_EQ(samples[0], -5);
  reader.seek(100);
  EXPECT_EQ(reader.read(samples.data(), 20), 0u);
}

TEST(SoundWavReader, CutsAClaimToWhatTheFileHolds) {
  // Five samples of stereo make two whole frames.
  const std::string bytes = riff(chunk("fmt ", format(1, 2, 8000, 16)) +
                                 chunk("data", pcm16({1, 2, 3, 4, 5}), 2000000000));
  sf::MemoryInputStream stream;
  stream.open(bytes.data(), bytes.size());
  vt::WavReader reader;
  sf::SoundFileReader::Info info{};
  ASSERT_TRUE(reader.open(stream, info));
  EXPECT_EQ(info.sampleCount, 4u);
  Samples samples(10);
  EXPECT_EQ(reader.read(samples.data(), 10), 4u);
}

TEST(SoundWavReader, LeavesOtherFilesToSfml) {
  const std::string data = chunk("data", pcm16(STEREO));
  EXPECT_FALSE(check(riff(chunk("fmt ", format(1, 2, 8000, 8)) + data)));
  EXPECT_FALSE(check(riff(chunk("fmt ", format(3, 2, 8000, 16)) + data)));
  EXPECT_FALSE(check(riff(chunk("fmt ", format(0xFFFE, 2, 8000, 16)) + data)));
  EXPECT_FALSE(check(riff(chunk("fmt ", format(1, 0, 8000, 16)) + data)));
  EXPECT_FALSE(check(riff(data + chunk("fmt ", format(1, 2, 8000, 16)))));
  EXPECT_FALSE(check(riff(chunk("fmt ", format(1, 2, 8000, 16).substr(0, 10)) + data)));
  EXPECT_FALSE(check(riff(chunk("fmt ", format(1, 2, 8000, 16)))));
  EXPECT_FALSE(check("RIFX" + riff(data).substr(4)));
  EXPECT_FALSE(check(""));
}

TEST(SoundWavReader, GoesAheadOfSfmlsReaders) {
  testing::internal::CaptureStderr();
  {
    test::ResourceEngine engine;
    vt::Sound sound;
    // Only this reader cuts a claim down: SFML's would believe it.
    const std::string liar = engine.writeWav("liar.wav", 100, 2000000000);
    sf::InputSoundFile file;
    ASSERT_TRUE(file.openFromFile(liar));
    EXPECT_EQ(file.getSampleCount(), 100u);
    EXPECT_EQ(sound.loadSound(liar), 0);
    vt::Music music;
    EXPECT_EQ(music.loadMusic(liar), 0);

    // Files it leaves alone still load through SFML.
    const std::string eight_bit = engine.writeFile(
        "eight.wav", riff(chunk("fmt ", format(1, 1, 8000, 8)) + chunk("data", "\x80\x90\x70")));
    ASSERT_TRUE(file.openFromFile(eight_bit));
    EXPECT_EQ(file.getSampleCount(), 3u);
    EXPECT_EQ(sound.loadSound(eight_bit), 0);

    // A sound held in memory may not claim more than ten minutes of samples.
    const std::string eight_bit_liar = engine.writeFile(
        "eight-liar.wav",
        riff(chunk("fmt ", format(1, 1, 8000, 8)) + chunk("data", "\x80\x90\x70", 2000000000)));
    engine.newLogLines();
    EXPECT_EQ(sound.loadSound(eight_bit_liar), -1);
    EXPECT_EQ(engine.newLogLines(), Lines{"Sound::loadSound(): Error! '" + eight_bit_liar +
                                          "' claims 2000000000 samples, more than 57600000."});
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
