// Sounds, music and the WAV reader, played through the silent null driver.
#include <gtest/gtest.h>

#include <SFML/Audio.hpp>
#include <SFML/System/MemoryInputStream.hpp>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "core/LogManager.h"
#include "media/LogStreamBuf.h"
#include "media/Music.h"
#include "media/ResourceManager.h"
#include "media/Sound.h"
#include "media/WavReader.h"
#include "support/ResourceEngine.h"

using Lines = std::vector<std::string>;
using Samples = std::vector<sf::Int16>;
using Status = sf::SoundSource::Status;
using test::littleEndian;

using namespace std::string_literals;

namespace {

const int SHORT = 400;  // samples: a twentieth of a second

// Waits up to ten seconds for the condition; true when it came.
bool waitFor(const std::function<bool()>& condition) {
  for (int waited = 0; waited < 10000 && !condition(); waited += 10) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return condition();
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
};

}  // namespace

TEST_F(SoundTest, SoundsPlayOnceOrLoopAndCopiesKeepTheirSamples) {
  test::ResourceEngine engine;
  vt::LogManager::getInstance().setLogLevel(5);
  auto p_sound = std::make_unique<vt::Sound>();
  ASSERT_EQ(p_sound->loadSound(engine.writeWav("beep.wav", SHORT)), 0);
  p_sound->setLabel("beep");
  engine.newLogLines();
  p_sound->play(false);
  EXPECT_TRUE(waitFor([&] { return p_sound->getStatus() == Status::Stopped; }));
  EXPECT_EQ(engine.newLogLines(), Lines{"Sound::play(): Playing sound."});
  vt::Sound copy(*p_sound), assigned;
  assigned = *p_sound;
  p_sound.reset();
  for (vt::Sound* p_copy : {&copy, &assigned}) p_copy->play(true);
  // Long enough for the sound to have ended had it not looped.
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(std::pair(copy.getStatus(), assigned.getStatus()),
            std::pair(Status::Playing, Status::Playing));
  EXPECT_EQ(assigned.getLabel(), "beep");
  assigned.pause();
  EXPECT_EQ(assigned.getStatus(), Status::Paused);
  copy.stop();
  EXPECT_EQ(copy.getStatus(), Status::Stopped);
  // Taking on an empty sound silences the voice.
  assigned = vt::Sound();
  EXPECT_EQ(std::pair(assigned.getStatus(), assigned.getLabel()), std::pair(Status::Stopped, ""s));
}

TEST_F(SoundTest, MusicStreamsPausesStopsAndStartsOverAfterAStop) {
  test::ResourceEngine engine;
  vt::LogManager::getInstance().setLogLevel(5);
  vt::Music music;
  ASSERT_EQ(music.loadMusic(engine.writeWav("theme.wav", SHORT)), 0);
  engine.newLogLines();
  music.play(false);
  EXPECT_TRUE(waitFor([&] { return music.getStatus() == Status::Stopped; }));
  // Long enough for its stream never to run dry on a busy machine.
  ASSERT_EQ(music.loadMusic(engine.writeWav("long.wav", 8000 * 20)), 0);
  music.play(true);
  EXPECT_EQ(music.getStatus(), Status::Playing);
  music.pause();
  EXPECT_EQ(music.getStatus(), Status::Paused);
  music.play(true);
  EXPECT_TRUE(waitFor([&] { return music.getPlayingOffset() >= sf::seconds(1); }));
  music.stop();
  EXPECT_EQ(music.getStatus(), Status::Stopped);
  EXPECT_EQ(music.getPlayingOffset(), sf::Time::Zero);
  music.play(false);
  EXPECT_EQ(music.getStatus(), Status::Playing);
  // Started over: short of where it had got to before the stop.
  EXPECT_LT(music.getPlayingOffset(), sf::seconds(1));
  const std::string play = "Music::play(): Playing music.";
  EXPECT_EQ(engine.newLogLines(), (Lines{play, play, "Music::pause(): Pausing music.", play,
                                         "Music::stop(): Stopping music.", play}));
}

TEST_F(SoundTest, BadSoundFilesAreRefusedWithTheirLogLines) {
  test::ResourceEngine engine;
  const std::string missing = engine.writeFile("", "") + "missing.wav";
  const std::string junk = engine.writeFile("junk.wav", "RIFF\x10\0\0\0WAVEjunk");
  // Eight bits (which SFML reads) claiming two billion samples.
  const std::string liar =
      engine.writeFile("liar.wav", with(with(test::ResourceEngine::wavBytes(8), 32, "\x01\0\x08"s),
                                        40, littleEndian(2000000000, 4)));
  const std::pair<std::string, std::string> cases[] = {
      {missing, "SFML: Failed to open sound file \"" + missing + "\" (couldn't open stream)"},
      {junk, "SFML: Failed to open sound file \"" + junk + "\" (format not supported)"},
      {liar,
       "Sound::loadSound(): Error! '" + liar + "' claims 2000000000 samples, more than 57600000."}};
  for (const auto& [path, first_line] : cases) {
    engine.newLogLines();
    EXPECT_EQ(vt::ResourceManager::getInstance().loadSound(path, "bad"), -1);
    EXPECT_EQ(
        engine.newLogLines(),
        (Lines{first_line, "RM::loadSound(): Error! Cannot load sound from file '" + path + "'."}));
  }
  EXPECT_EQ(vt::ResourceManager::getInstance().getSoundCount(), 0);
  // Whole lines written to an error stream, SFML's too, go to the log.
  vt::LogStreamBuf buffer("pre: ");
  std::ostream stream(&buffer);
  stream << "one\n"
         << "two " << 100 << "%s" << std::endl
         << "unfinished";
  sf::err() << "from SFML" << std::endl;
  EXPECT_EQ(engine.newLogLines(), (Lines{"pre: one", "pre: two 100%s", "SFML: from SFML"}));
}

TEST_F(SoundTest, WavReaderReadsSixteenBitPcmAndLeavesOtherFilesToSfml) {
  const Samples samples = {0, 1, -1, 32767, -32768, 258, 5, -5};
  std::string data;
  for (const sf::Int16 sample : samples)
    data += littleEndian(static_cast<std::uint16_t>(sample), 2);
  // Stereo, after an odd-sized chunk, which is padded.
  const std::string stereo =
      with(with(test::ResourceEngine::wavBytes(8), 22, "\x02"s), 32, "\x04"s).substr(0, 44) + data;
  const std::string bytes = stereo.substr(0, 12) + "LIST\x03\0\0\0odd\0"s + stereo.substr(12);
  sf::MemoryInputStream stream;
  stream.open(bytes.data(), bytes.size());
  stream.seek(30);
  vt::WavReader reader;
  sf::SoundFileReader::Info info{};
  ASSERT_TRUE(reader.open(stream, info));
  EXPECT_EQ(std::tuple(info.sampleCount, info.channelCount, info.sampleRate),
            std::tuple(8u, 2u, 8000u));
  Samples read(9, 99);
  EXPECT_EQ(reader.read(read.data(), 20), 8u);
  EXPECT_EQ(read, (Samples{0, 1, -1, 32767, -32768, 258, 5, -5, 99}));
  EXPECT_EQ(reader.read(read.data(), 20), 0u);
  reader.seek(6);
  EXPECT_EQ(reader.read(read.data(), 1) * read[0], 5);
  reader.seek(100);
  EXPECT_EQ(reader.read(read.data(), 20), 0u);
  // Five samples of stereo that claim far more make two whole frames.
  const std::string cut = with(stereo.substr(0, 54), 40, littleEndian(2000000000, 4));
  stream.open(cut.data(), cut.size());
  ASSERT_TRUE(reader.open(stream, info));
  EXPECT_EQ(info.sampleCount, 4u);
  EXPECT_EQ(reader.read(read.data(), 10), 4u);
  const std::string good = test::ResourceEngine::wavBytes(8);
  // Files it declines: each breaks one field of a good header.
  const std::pair<std::size_t, std::string> breaks[] = {{3, "X"},      {8, "X"},      {16, "\x0f"s},
                                                        {20, "\x03"s}, {22, "\0"s},   {24, "\0\0"s},
                                                        {32, "\x03"s}, {34, "\x08"s}, {12, "data"}};
  std::vector<std::string> others = {good.substr(0, 36), ""};
  for (const auto& [at, part] : breaks) others.push_back(with(good, at, part));
  for (const std::string& other : others) {
    stream.open(other.data(), other.size());
    EXPECT_FALSE(vt::WavReader::check(stream)) << &other - others.data();
  }
  // It goes ahead of SFML's own readers, which would believe a claim.
  test::ResourceEngine engine;
  const std::string liar = engine.writeWav("liar.wav", 100, 2000000000);
  vt::Sound sound;
  EXPECT_EQ(sound.loadSound(liar), 0);
  vt::Music music;
  EXPECT_EQ(music.loadMusic(liar), 0);
  sf::InputSoundFile file;
  ASSERT_TRUE(file.openFromFile(engine.writeFile("eight.wav", with(good, 32, "\x01\0\x08"s))));
  EXPECT_EQ(file.getSampleCount(), 16u);
}
