// Sounds, music and the WAV reader, played through the silent null driver.
#include <gtest/gtest.h>

#include <SFML/Audio.hpp>
#include <cmath>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "core/LogManager.h"
#include "media/Music.h"
#include "media/ResourceManager.h"
#include "media/Sound.h"
#include "support/HeadlessEngine.h"

using Lines = std::vector<std::string>;
using Samples = std::vector<sf::Int16>;
using Status = sf::SoundSource::Status;
using namespace std::string_literals;

namespace {

using test::waitFor;

// The value's count lowest bytes, lowest first.
std::string littleEndian(unsigned long value, int count) {
  std::string bytes;
  for (int i = 0; i < count; i++) bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
  return bytes;
}

// A 16-bit mono 8 kHz PCM WAV of a tone whose header claims claimed_count
// samples (sample_count when negative).
std::string wavBytes(int sample_count, long claimed_count = -1) {
  const unsigned long data_bytes = 2 * (claimed_count < 0 ? sample_count : claimed_count);
  std::string bytes = "RIFF" + littleEndian(36 + data_bytes, 4) + "WAVEfmt " + littleEndian(16, 4) +
                      littleEndian(1, 2) + littleEndian(1, 2) + littleEndian(8000, 4) +
                      littleEndian(16000, 4) + littleEndian(2, 2) + littleEndian(16, 2) + "data" +
                      littleEndian(data_bytes, 4);
  for (int i = 0; i < sample_count; i++)
    bytes += littleEndian(static_cast<std::uint16_t>(std::lround(8000 * std::sin(i * 0.3))), 2);
  return bytes;
}

// The bytes with part written over them from offset at.
std::string with(std::string bytes, std::size_t at, const std::string& part) {
  return bytes.replace(at, part.size(), part);
}

// Nothing reaches the terminal.
class SoundTest : public testing::Test {
 protected:
  void SetUp() override { testing::internal::CaptureStderr(); }
  void TearDown() override { EXPECT_EQ(testing::internal::GetCapturedStderr(), ""); }
  test::HeadlessEngine engine{test::HeadlessEngine::WORLD_AND_RESOURCES};
  vt::ResourceManager& rm = vt::ResourceManager::getInstance();
  const std::string beep = engine.writeFile("beep.wav", wavBytes(400));
  // Long enough for its stream never to run dry on a busy machine.
  const std::string song = engine.writeFile("song.wav", wavBytes(8000 * 20));
};

}  // namespace

// Sounds and music played once stop by themselves; music stopped starts over.
TEST_F(SoundTest, SoundsAndMusicPlayOnceOrLoopPauseAndStop) {
  vt::LogManager::getInstance().setLogLevel(5);
  vt::Sound sound;
  vt::Music music;
  ASSERT_EQ(sound.loadSound(beep) + music.loadMusic(beep), 0);
  engine.newLogLines();
  sound.play(false);
  music.play(false);
  EXPECT_TRUE(waitFor([&] { return sound.getStatus() == Status::Stopped; }));
  EXPECT_TRUE(waitFor([&] { return music.getStatus() == Status::Stopped; }));
  EXPECT_EQ(engine.newLogLines().front(), "Sound::play(): Playing sound.");
  ASSERT_EQ(music.loadMusic(song), 0);
  music.play(true);
  music.pause();
  EXPECT_EQ(music.getStatus(), Status::Paused);
  music.play(true);
  EXPECT_TRUE(waitFor([&] { return music.getPlayingOffset() >= sf::seconds(1); }));
  music.stop();
  EXPECT_EQ(std::pair(music.getStatus(), music.getPlayingOffset()),
            std::pair(Status::Stopped, sf::Time::Zero));
  music.play(false);
  EXPECT_EQ(music.getStatus(), Status::Playing);
  EXPECT_LT(music.getPlayingOffset(), sf::seconds(1));
  const std::string play = "Music::play(): Playing music.";
  EXPECT_EQ(engine.newLogLines(), (Lines{play, "Music::pause(): Pausing music.", play,
                                         "Music::stop(): Stopping music.", play}));
}

// Sounds left after an unload keep playing their samples; unloaded music
// stops and is no longer found. Stopping the manager silences and forgets all.
TEST_F(SoundTest, ManagerHoldsSoundsAndMusicByLabelWhileStarted) {
  for (const char* label : {"fire", "boom", "hit"}) ASSERT_EQ(rm.loadSound(beep, label), 0);
  EXPECT_EQ(rm.unloadSound("fire"), 0);
  EXPECT_EQ(rm.unloadSound("fire"), -1);
  ASSERT_EQ(rm.loadSound(beep, "zap"), 0);
  for (const char* label : {"boom", "hit", "zap"}) rm.getSound(label)->play(true);
  // The looping ones play on past the end of the same sound played once.
  vt::Sound once;
  ASSERT_EQ(once.loadSound(beep), 0);
  once.play(false);
  ASSERT_TRUE(waitFor([&] { return once.getStatus() == Status::Stopped; }));
  for (const char* label : {"boom", "hit", "zap"})
    EXPECT_EQ(rm.getSound(label)->getStatus(), Status::Playing) << label;
  EXPECT_EQ(rm.loadMusic(song, ""), -1);
  ASSERT_EQ(rm.loadMusic(song, "theme") + rm.loadMusic(song, "boss"), 0);
  vt::Music* p_theme = rm.getMusic("theme");
  vt::Music* p_boss = rm.getMusic("boss");
  vt::Sound* p_zap = rm.getSound("zap");
  p_theme->play(true);
  p_boss->play(true);
  EXPECT_EQ(rm.unloadMusic("theme"), 0);
  EXPECT_EQ(rm.unloadMusic("theme"), -1);
  EXPECT_EQ(std::tuple(p_theme->getStatus(), rm.getMusic("theme"), p_boss->getStatus()),
            std::tuple(Status::Stopped, nullptr, Status::Playing));
  rm.shutDown();
  EXPECT_EQ(std::pair(p_zap->getStatus(), p_boss->getStatus()),
            std::pair(Status::Stopped, Status::Stopped));
  EXPECT_EQ(rm.loadSound(beep, "f") + rm.unloadSound("f") + rm.loadMusic(beep, "t") +
                rm.unloadMusic("t") + rm.loadSprite(beep, "s") + rm.unloadSprite("s"),
            -6);
  ASSERT_EQ(rm.startUp(), 0);
  EXPECT_EQ(rm.getSoundCount() + rm.getMusicCount(), 0);
  for (int i = 0; i < vt::MAX_SOUNDS; i++) ASSERT_EQ(rm.loadSound(beep, std::to_string(i)), 0);
  EXPECT_EQ(rm.loadSound(beep, "one-too-many"), -1);
  EXPECT_EQ(rm.unloadSound("0"), 0);
  EXPECT_EQ(rm.loadSound(beep, "one-more"), 0);
  for (int i = 0; i < vt::MAX_MUSICS; i++) ASSERT_EQ(rm.loadMusic(song, std::to_string(i)), 0);
  EXPECT_EQ(rm.loadMusic(song, "one-too-many"), -1);
}

// Files that are not RIFF WAVE files are refused with SFML's reason ('@' stands for the path),
// broken or unsupported WAV files with the reader's; the manager's line follows.
TEST_F(SoundTest, BadSoundFilesAreRefusedWithTheirLogLines) {
  const std::string good = wavBytes(100);
  const std::string unsupported = "SFML: Failed to open sound file \"@\" (format not supported)";
  const std::string refused =
      "WavReader::open(): Error! Not a WAV file of 8, 16, 24 or 32-bit PCM samples in 1 to 8 "
      "channels.";
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"rifx", with(good, 3, "X"), unsupported},
      {"wavx", with(good, 11, "X"), unsupported},
      {"float", with(good, 20, "\x03"s), refused},
      {"12-bit", with(good, 34, "\x0c"s), refused},
      {"short-format", with(good, 16, "\x0f"s), refused},
      {"no-data", with(good, 36, "dat_"), refused},
      {"cut", good.substr(0, 36), refused},
      {"data-first", good.substr(0, 12) + "data\0\0\0\0"s + good.substr(12), refused},
      {"absurd-rate", with(good, 24, littleEndian(4000000000, 4)), refused},
      {"nine-channels", with(with(good, 22, "\x09"s), 32, "\x12"s), refused},
      // Eight bits (which SFML reads) claiming two billion samples.
      {"liar", with(with(wavBytes(8), 32, "\x01\0\x08"s), 40, littleEndian(2000000000, 4)),
       "Sound::loadSound(): Error! '@' claims 2000000000 samples, more than 57600000."},
  };
  for (const auto& [name, bytes, reason] : cases) {
    SCOPED_TRACE(name);
    const std::string path = engine.writeFile(""s + name + ".wav", bytes);
    std::string first = reason;
    if (const auto at = first.find('@'); at != std::string::npos) first.replace(at, 1, path);
    engine.newLogLines();
    EXPECT_EQ(rm.loadSound(path, "bad"), -1);
    EXPECT_EQ(
        engine.newLogLines(),
        (Lines{first, "RM::loadSound(): Error! Cannot load sound from file '" + path + "'."}));
  }
  EXPECT_EQ(rm.getSoundCount(), 0);
  // A 16-bit file claiming more than it holds is cut to what it holds.
  const std::string liar = engine.writeFile("liar16.wav", wavBytes(100, 2000000000));
  EXPECT_EQ(rm.loadSound(liar, "cut") + rm.loadMusic(liar, "cut"), 0);
  // Whole frames of 8, 24 and 32 bits load too.
  for (const std::string& layout : {"\x01\0\x08"s, "\x03\0\x18"s, "\x04\0\x20"s}) {
    const std::string path = engine.writeFile("wide.wav", with(good, 32, layout));
    EXPECT_EQ(rm.loadSound(path, "wide" + layout) + rm.loadMusic(path, "wide" + layout), 0);
  }
}

// Stereo after an odd-sized chunk (which is padded): the samples as written,
// whole frames only, from any position.
TEST_F(SoundTest, WavFilesReadAsTheSamplesWritten) {
  std::string data;
  for (const sf::Int16 sample : {0, 1, -1, 32767, -32768, 258, 5, -5})
    data += littleEndian(static_cast<std::uint16_t>(sample), 2);
  const std::string stereo = with(with(wavBytes(8), 22, "\x02"s), 32, "\x04"s).substr(0, 44) + data;
  const std::string bytes = stereo.substr(0, 12) + "LIST\x03\0\0\0odd\0"s + stereo.substr(12);
  vt::Sound prepares_the_readers;
  sf::InputSoundFile file;
  ASSERT_TRUE(file.openFromMemory(bytes.data(), bytes.size()));
  EXPECT_EQ(std::tuple(file.getSampleCount(), file.getChannelCount(), file.getSampleRate()),
            std::tuple(8u, 2u, 8000u));
  Samples read(9, 99);
  EXPECT_EQ(file.read(read.data(), 20), 8u);
  EXPECT_EQ(read, (Samples{0, 1, -1, 32767, -32768, 258, 5, -5, 99}));
  file.seek(6);
  EXPECT_EQ(file.read(read.data(), 1) * read[0], 5);
  // Five samples of stereo that claim far more make two whole frames.
  const std::string cut = with(stereo.substr(0, 54), 40, littleEndian(2000000000, 4));
  ASSERT_TRUE(file.openFromMemory(cut.data(), cut.size()));
  EXPECT_EQ(file.read(read.data(), 10), 4u);
}
