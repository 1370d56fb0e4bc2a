#include <gtest/gtest.h>
#include <sys/stat.h>

#include <SFML/System/Err.hpp>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "core/LogManager.h"
#include "media/AudioEnvironment.h"
#include "media/LogStreamBuf.h"
#include "media/Music.h"
#include "media/Sound.h"
#include "support/HeadlessEngine.h"
#include "support/ResourceEngine.h"

using Lines = std::vector<std::string>;

namespace {

// A twentieth of a second at 44.1 kHz.
const int SHORT = 2205;

void pause(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// Waits up to five seconds for the status; true when it came.
bool waitFor(const std::function<sf::SoundSource::Status()>& status,
             sf::SoundSource::Status wanted) {
  for (int waited = 0; waited < 5000 && status() != wanted; waited += 10) pause(10);
  return status() == wanted;
}

}  // namespace

TEST(Sound, PlaysOnceOrLoopsUntilStopped) {
  testing::internal::CaptureStderr();
  {
    test::ResourceEngine engine;
    vt::LogManager::getInstance().setLogLevel(5);
    vt::Sound sound;
    ASSERT_EQ(sound.loadSound(engine.writeWav("beep.wav", SHORT)), 0);
    engine.newLogLines();
    sound.play(false);
    EXPECT_EQ(engine.newLogLines(), Lines{"Sound::play(): Playing sound."});
    EXPECT_TRUE(waitFor([&] { return sound.getStatus(); }, sf::SoundSource::Stopped));

    sound.play(true);
    pause(300);
    EXPECT_EQ(sound.getStatus(), sf::SoundSource::Playing);
    sound.pause();
    EXPECT_EQ(sound.getStatus(), sf::SoundSource::Paused);
    sound.play(true);
    sound.stop();
    EXPECT_EQ(sound.getStatus(), sf::SoundSource::Stopped);
    // Stopping and pausing write nothing.
    EXPECT_EQ(engine.newLogLines(),
              (Lines{"Sound::play(): Playing sound.", "Sound::play(): Playing sound."}));
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Sound, CopiesHaveTheirOwnSamples) {
  testing::internal::CaptureStderr();
  {
    test::ResourceEngine engine;
    auto p_original = std::make_unique<vt::Sound>();
    ASSERT_EQ(p_original->loadSound(engine.writeWav("beep.wav", SHORT)), 0);
    p_original->setLabel("beep");
    vt::Sound copy(*p_original);
    vt::Sound assigned;
    assigned = *p_original;
    p_original.reset();
    for (vt::Sound* p_sound : {&copy, &assigned}) {
      EXPECT_EQ(p_sound->getLabel(), "beep");
      p_sound->play(true);
    }
    pause(300);
    EXPECT_EQ(copy.getStatus(), sf::SoundSource::Playing);
    EXPECT_EQ(assigned.getStatus(), sf::SoundSource::Playing);
    // Taking on an empty sound silences the voice.
    assigned = vt::Sound();
    EXPECT_EQ(assigned.getStatus(), sf::SoundSource::Stopped);
    EXPECT_EQ(assigned.getLabel(), "");
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Sound, BadFilesAreRefused) {
  testing::internal::CaptureStderr();
  {
    test::ResourceEngine engine;
    vt::Sound sound;
    const std::string missing = engine.writeFile("", "") + "missing.wav";
    EXPECT_EQ(sound.loadSound(missing), -1);
    EXPECT_EQ(sound.loadSound(engine.writeFile("junk.wav", "RIFF\x10\0\0\0WAVEjunk")), -1);
    // SFML's own complaints go to the log.
    EXPECT_NE(engine.logText().find("SFML: Failed to open sound file \"" + missing +
                                    "\" (couldn't open stream)\n"),
              std::string::npos);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Music, StreamsPausesAndStops) {
  testing::internal::CaptureStderr();
  {
    test::ResourceEngine engine;
    vt::LogManager::getInstance().setLogLevel(5);
    vt::Music music;
    EXPECT_EQ(music.loadMusic(engine.writeFile("", "") + "missing.ogg"), -1);
    ASSERT_EQ(music.loadMusic(engine.writeWav("theme.wav", SHORT * 2)), 0);
    engine.newLogLines();
    music.play(false);
    EXPECT_TRUE(waitFor([&] { return music.getStatus(); }, sf::SoundSource::Stopped));
    music.play(true);
    pause(400);
    EXPECT_EQ(music.getStatus(), sf::SoundSource::Playing);
    music.pause();
    EXPECT_EQ(music.getStatus(), sf::SoundSource::Paused);
    music.stop();
    EXPECT_EQ(music.getStatus(), sf::SoundSource::Stopped);
    EXPECT_EQ(music.getPlayingOffset(), sf::Time::Zero);
    // Played again after a stop, a long track starts from the beginning.
    vt::Music long_music;
    ASSERT_EQ(long_music.loadMusic(engine.writeWav("long.wav", SHORT * 20)), 0);
    long_music.play(false);
    pause(600);
    EXPECT_GE(long_music.getPlayingOffset(), sf::milliseconds(400));
    long_music.stop();
    music.play(true);
    long_music.play(false);
    pause(100);
    EXPECT_EQ(long_music.getStatus(), sf::SoundSource::Playing);
    EXPECT_LT(long_music.getPlayingOffset(), sf::milliseconds(400));
    EXPECT_EQ(engine.newLogLines(),
              (Lines{"Music::play(): Playing music.", "Music::play(): Playing music.",
                     "Music::pause(): Pausing music.", "Music::stop(): Stopping music.",
                     "Music::play(): Playing music.", "Music::stop(): Stopping music.",
                     "Music::play(): Playing music.", "Music::play(): Playing music."}));
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(SoundDevice, FoundByPlaybackNodeOrSoundServer) {
  const std::string devices = test::makeTempDir();
  const std::string runtime = test::makeTempDir();
  EXPECT_FALSE(vt::AudioEnvironment::hasSoundDevice(devices, runtime));
  EXPECT_FALSE(vt::AudioEnvironment::hasSoundDevice(devices + "/none", ""));
  // Control and capture nodes do not play.
  for (const char* name : {"controlC0", "pcmC0D0c", "timer"}) {
    std::ofstream(devices + "/" + name).put('\0');
  }
  EXPECT_FALSE(vt::AudioEnvironment::hasSoundDevice(devices, runtime));
  std::ofstream(devices + "/pcmC1D3p").put('\0');
  EXPECT_TRUE(vt::AudioEnvironment::hasSoundDevice(devices, ""));
  ASSERT_EQ(mkdir((runtime + "/pulse").c_str(), 0700), 0);
  std::ofstream(runtime + "/pulse/native").put('\0');
  EXPECT_TRUE(vt::AudioEnvironment::hasSoundDevice(devices + "/none", runtime));
}

TEST(SoundDevice, DriverChoiceKeepsTheUsersSetting) {
  test::HeadlessEngine engine;
  setenv("ALSOFT_DRIVERS", "pulse", 1);
  vt::AudioEnvironment::chooseDriver();
  EXPECT_STREQ(std::getenv("ALSOFT_DRIVERS"), "pulse");
  unsetenv("ALSOFT_DRIVERS");
  const char* p_runtime = std::getenv("XDG_RUNTIME_DIR");
  if (std::getenv("PULSE_SERVER") != nullptr ||
      vt::AudioEnvironment::hasSoundDevice("/dev/snd", p_runtime ? p_runtime : "")) {
    GTEST_SKIP() << "this machine has a sound device";
  }
  vt::AudioEnvironment::chooseDriver();
  EXPECT_STREQ(std::getenv("ALSOFT_DRIVERS"), "null");
}

TEST(SoundDevice, ErrorStreamLinesGoToTheLog) {
  test::HeadlessEngine engine;
  vt::LogStreamBuf buffer("pre: ");
  std::ostream stream(&buffer);
  stream << "one\n"
         << "two " << 100 << "%s" << std::endl
         << "unfinished";
  const std::string log = engine.logText();
  EXPECT_NE(log.find(" pre: one\n"), std::string::npos);
  EXPECT_NE(log.find(" pre: two 100%s\n"), std::string::npos);
  EXPECT_EQ(log.find("unfinished"), std::string::npos);

  // Once an audio object exists, SFML's error stream writes to the log.
  testing::internal::CaptureStderr();
  { vt::Sound sound; }
  sf::err() << "from SFML" << std::endl;
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_NE(engine.logText().find(" SFML: from SFML\n"), std::string::npos);
}
