#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "core/LogManager.h"
#include "media/ResourceManager.h"
#include "support/ResourceEngine.h"

using Lines = std::vector<std::string>;

namespace {

vt::ResourceManager& rm() {
  return vt::ResourceManager::getInstance();
}

// A twentieth of a second at 44.1 kHz.
const int SHORT = 2205;

void pause(int milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace

TEST(ResourceManagerAudio, SoundTable) {
  testing::internal::CaptureStderr();
  {
    test::ResourceEngine engine;
    vt::LogManager::getInstance().setLogLevel(1);
    for (const char* label : {"fire", "boom", "hit"}) {
      ASSERT_EQ(rm().loadSound(engine.writeWav(std::string(label) + ".wav", SHORT), label), 0);
    }
    EXPECT_EQ(engine.newLogLines().back(), "RM::loadSound(): Sound 'hit' successfully loaded.");
    const std::string missing = engine.writeFile("", "") + "missing.wav";
    EXPECT_EQ(rm().loadSound(missing, "gone"), -1);
    EXPECT_EQ(engine.newLogLines(),
              (Lines{"SFML: Failed to open sound file \"" + missing + "\" (couldn't open stream)",
                     "RM::loadSound(): Error! Cannot load sound from file '" + missing + "'."}));
    EXPECT_EQ(rm().getSoundCount(), 3);
    EXPECT_EQ(rm().getSound("gone"), nullptr);
    EXPECT_EQ(rm().getSound("fire")->getLabel(), "fire");

    // Unloading moves the later sounds down one place each.
    vt::Sound* p_first_slot = rm().getSound("fire");
    EXPECT_EQ(rm().unloadSound("fire"), 0);
    EXPECT_EQ(rm().unloadSound("fire"), -1);
    EXPECT_EQ(rm().getSoundCount(), 2);
    EXPECT_EQ(rm().getSound("boom"), p_first_slot);
    EXPECT_EQ(rm().getSound("hit"), p_first_slot + 1);
    // The moved sounds keep their samples, also when the freed slot is
    // loaded again.
    ASSERT_EQ(rm().loadSound(engine.writeWav("zap.wav", SHORT * 4), "zap"), 0);
    EXPECT_EQ(rm().getSound("zap"), p_first_slot + 2);
    for (const char* label : {"boom", "hit", "zap"}) rm().getSound(label)->play(true);
    pause(300);
    for (const char* label : {"boom", "hit", "zap"}) {
      EXPECT_EQ(rm().getSound(label)->getStatus(), sf::SoundSource::Playing) << label;
    }
    // Stopping the engine stops every sound.
    rm().shutDown();
    for (int i = 0; i < 3; i++) EXPECT_EQ(p_first_slot[i].getStatus(), sf::SoundSource::Stopped);
    EXPECT_EQ(rm().startUp(), 0);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ResourceManagerAudio, AtMostAHundredSounds) {
  test::ResourceEngine engine;
  const std::string file = engine.writeWav("click.wav", 100);
  for (int i = 0; i < vt::MAX_SOUNDS; i++) {
    ASSERT_EQ(rm().loadSound(file, "click" + std::to_string(i)), 0) << i;
  }
  engine.newLogLines();
  EXPECT_EQ(rm().loadSound(file, "one-too-many"), -1);
  EXPECT_EQ(engine.newLogLines(),
            Lines{"RM::loadSound(): Error! Unable to add more sounds (max is 100)."});
  EXPECT_EQ(rm().getSound("one-too-many"), nullptr);
  EXPECT_EQ(rm().unloadSound("click0"), 0);
  EXPECT_EQ(rm().loadSound(file, "one-more"), 0);
  EXPECT_EQ(rm().getSoundCount(), vt::MAX_SOUNDS);
}

TEST(ResourceManagerAudio, MusicTable) {
  testing::internal::CaptureStderr();
  {
    test::ResourceEngine engine;
    vt::LogManager::getInstance().setLogLevel(1);
    const std::string file = engine.writeWav("theme.wav", 44100);
    EXPECT_EQ(rm().loadMusic(file, ""), -1);
    EXPECT_EQ(engine.newLogLines(), Lines{"RM::loadMusic(): Error! Must provide label for music."});
    const std::string missing = engine.writeFile("", "") + "missing.ogg";
    EXPECT_EQ(rm().loadMusic(missing, "gone"), -1);
    EXPECT_EQ(engine.newLogLines().back(),
              "RM::loadmusic(): Error! Cannot load music from file '" + missing + "'.");
    EXPECT_EQ(rm().getMusicCount(), 0);

    ASSERT_EQ(rm().loadMusic(file, "theme"), 0);
    ASSERT_EQ(rm().loadMusic(file, "boss"), 0);
    EXPECT_EQ(engine.newLogLines(), (Lines{"RM::loadMusic(): Music 'theme' successfully loaded.",
                                           "RM::loadMusic(): Music 'boss' successfully loaded."}));
    vt::Music* p_theme = rm().getMusic("theme");
    ASSERT_NE(p_theme, nullptr);
    EXPECT_EQ(p_theme->getLabel(), "theme");
    p_theme->play(true);
    rm().getMusic("boss")->play(true);

    // Unloading stops the music and hides it; its slot stays taken.
    EXPECT_EQ(rm().unloadMusic("theme"), 0);
    EXPECT_EQ(p_theme->getStatus(), sf::SoundSource::Stopped);
    EXPECT_EQ(rm().unloadMusic("theme"), -1);
    engine.newLogLines();
    EXPECT_EQ(rm().getMusic("theme"), nullptr);
    EXPECT_EQ(rm().getMusic(""), nullptr);
    EXPECT_EQ(engine.newLogLines(), (Lines{"RM::getMusic(): Warning! Music 'theme' not found.",
                                           "RM::getMusic(): Warning! Music '' not found."}));
    EXPECT_EQ(rm().getMusicCount(), 2);
    EXPECT_EQ(rm().getMusic("boss")->getStatus(), sf::SoundSource::Playing);
    rm().shutDown();
    EXPECT_EQ(p_theme[1].getStatus(), sf::SoundSource::Stopped);
    EXPECT_EQ(rm().startUp(), 0);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ResourceManagerAudio, AtMostFiftyMusics) {
  test::ResourceEngine engine;
  const std::string file = engine.writeWav("loop.wav", 100);
  for (int i = 0; i < vt::MAX_MUSICS; i++) {
    ASSERT_EQ(rm().loadMusic(file, "loop" + std::to_string(i)), 0) << i;
  }
  engine.newLogLines();
  EXPECT_EQ(rm().loadMusic(file, "one-too-many"), -1);
  EXPECT_EQ(engine.newLogLines(),
            Lines{"RM::loadMusic(): Error! Unable to add more musics (max is 50)."});
  // An unloaded music still holds its slot.
  EXPECT_EQ(rm().unloadMusic("loop7"), 0);
  EXPECT_EQ(rm().loadMusic(file, "one-more"), -1);
  EXPECT_EQ(rm().getMusicCount(), vt::MAX_MUSICS);
  EXPECT_NE(rm().getMusic("loop49"), nullptr);
}
