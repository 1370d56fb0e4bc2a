// The resource manager's tables of sprites, sounds and music by label.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "media/ResourceManager.h"
#include "support/ResourceEngine.h"
#include "world/Object.h"

using Lines = std::vector<std::string>;
using Status = sf::SoundSource::Status;

namespace {

vt::ResourceManager& rm() {
  return vt::ResourceManager::getInstance();
}

const char* const ONE_FRAME = "1\n5\n3\n0\nred\n.....\n.....\n.....\n";

}  // namespace

TEST(ResourceManager, WorksOnlyWhileStartedAndForgetsAllWhenStopped) {
  test::ResourceEngine engine;
  ASSERT_EQ(engine.loadSpriteText("ship", ONE_FRAME), 0);
  const std::string wav = engine.writeWav("fire.wav", 100);
  ASSERT_EQ(rm().loadSound(wav, "fire") + rm().loadMusic(wav, "theme"), 0);
  EXPECT_EQ(rm().startUp(), -1);
  rm().shutDown();
  EXPECT_FALSE(rm().isStarted());
  EXPECT_EQ(rm().loadSprite(wav, "ship") + rm().unloadSprite("ship") + rm().loadSound(wav, "f") +
                rm().unloadSound("f") + rm().loadMusic(wav, "t") + rm().unloadMusic("t"),
            -6);
  EXPECT_EQ(rm().startUp(), 0);
  EXPECT_EQ(rm().getSpriteCount() + rm().getSoundCount() + rm().getMusicCount(), 0);
  EXPECT_EQ(rm().getSound("fire"), nullptr);
  EXPECT_EQ(rm().getMusic("theme"), nullptr);
}

TEST(ResourceManager, SpritesByLabelUpToAThousandAndOnObjects) {
  test::ResourceEngine engine;
  for (const char* label : {"a", "b", "c", "b"})
    ASSERT_EQ(engine.loadSpriteText(label, ONE_FRAME), 0);
  vt::Sprite* p_c = rm().getSprite("c");
  EXPECT_EQ(rm().getSprite("B"), nullptr);
  // The first of two equal labels goes first; the others keep their order.
  EXPECT_EQ(rm().unloadSprite("b") + rm().unloadSprite("b"), 0);
  EXPECT_EQ(rm().unloadSprite("b"), -1);
  EXPECT_EQ(rm().getSprite("c"), p_c);
  EXPECT_EQ(rm().getSpriteCount(), 2);
  const std::string file = engine.writeFile("dot.txt", "1\n1\n1\n0\nwhite\n*\n");
  for (int i = 2; i < vt::MAX_SPRITES; i++) {
    ASSERT_EQ(rm().loadSprite(file, "dot" + std::to_string(i)), 0) << i;
  }
  engine.newLogLines();
  EXPECT_EQ(rm().loadSprite(file, "one-too-many"), -1);
  EXPECT_EQ(engine.newLogLines(),
            (Lines{"RM::loadRobustSprite(): Error! Cannot add more Sprites (max is 1000).",
                   "RM::loadRobustSprite(): Sprite 'one-too-many' not loaded."}));
  EXPECT_NE(rm().getSprite("dot999"), nullptr);
  EXPECT_EQ(rm().unloadSprite("a"), 0);
  EXPECT_EQ(rm().loadSprite(file, "one-more"), 0);
  // An object takes a sprite and its box by label and keeps both when the
  // label is unknown.
  auto* p_object = new vt::Object;
  const vt::Box default_box = p_object->getBox();
  EXPECT_EQ(p_object->setSprite("boat"), -1);
  EXPECT_EQ(p_object->getBox(), default_box);
  EXPECT_EQ(p_object->setSprite("c"), 0);
  EXPECT_EQ(p_object->getAnimation().getSprite(), p_c);
  EXPECT_EQ(p_object->getBox(), vt::Box(vt::Vector(-2.5f, -1.5f), 5, 3));
}

TEST(ResourceManager, SoundsMoveDownWhenOneGoesAndMusicKeepsItsSlot) {
  testing::internal::CaptureStderr();
  {
    test::ResourceEngine engine;
    const std::string file = engine.writeWav("beep.wav", 400);
    for (const char* label : {"fire", "boom", "hit"}) ASSERT_EQ(rm().loadSound(file, label), 0);
    vt::Sound* p_first_slot = rm().getSound("fire");
    EXPECT_EQ(rm().unloadSound("fire"), 0);
    EXPECT_EQ(rm().unloadSound("fire"), -1);
    EXPECT_EQ(rm().getSound("boom"), p_first_slot);
    EXPECT_EQ(rm().getSound("hit"), p_first_slot + 1);
    // The moved sounds keep their samples, also when the freed slot is
    // loaded again; stopping the manager stops them all.
    ASSERT_EQ(rm().loadSound(file, "zap"), 0);
    EXPECT_EQ(rm().getSound("zap"), p_first_slot + 2);
    for (int i = 0; i < 3; i++) p_first_slot[i].play(true);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    for (int i = 0; i < 3; i++) EXPECT_EQ(p_first_slot[i].getStatus(), Status::Playing) << i;
    rm().shutDown();
    for (int i = 0; i < 3; i++) EXPECT_EQ(p_first_slot[i].getStatus(), Status::Stopped) << i;
    ASSERT_EQ(rm().startUp(), 0);
    for (int i = 0; i < vt::MAX_SOUNDS; i++) ASSERT_EQ(rm().loadSound(file, std::to_string(i)), 0);
    EXPECT_EQ(rm().loadSound(file, "one-too-many"), -1);
    EXPECT_EQ(rm().unloadSound("0"), 0);
    EXPECT_EQ(rm().loadSound(file, "one-more"), 0);
    EXPECT_NE(rm().getSound("99"), nullptr);
    // Music long enough for its stream never to run dry on a busy machine.
    const std::string song = engine.writeWav("song.wav", 8000 * 5);
    EXPECT_EQ(rm().loadMusic(song, ""), -1);
    ASSERT_EQ(rm().loadMusic(song, "theme") + rm().loadMusic(song, "boss"), 0);
    vt::Music* p_theme = rm().getMusic("theme");
    ASSERT_NE(p_theme, nullptr);
    EXPECT_EQ(p_theme->getLabel(), "theme");
    p_theme->play(true);
    p_theme[1].play(true);
    // Unloading stops the music and hides it; its slot stays taken.
    EXPECT_EQ(rm().unloadMusic("theme"), 0);
    EXPECT_EQ(p_theme->getStatus(), Status::Stopped);
    EXPECT_EQ(rm().unloadMusic("theme"), -1);
    EXPECT_EQ(rm().getMusic("theme"), nullptr);
    EXPECT_EQ(p_theme[1].getStatus(), Status::Playing);
    for (int i = 2; i < vt::MAX_MUSICS; i++) ASSERT_EQ(rm().loadMusic(song, std::to_string(i)), 0);
    EXPECT_EQ(rm().loadMusic(song, "one-too-many"), -1);
    EXPECT_NE(rm().getMusic("49"), nullptr);
    rm().shutDown();
    EXPECT_EQ(p_theme[1].getStatus(), Status::Stopped);
    ASSERT_EQ(rm().startUp(), 0);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
