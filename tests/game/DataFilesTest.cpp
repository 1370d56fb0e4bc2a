// The game's sprite, sound and music files load with the engine's loaders,
// and the sprites have the shapes that the game's geometry relies on.

#include <gtest/gtest.h>

#include <SFML/Audio/SoundBuffer.hpp>
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "media/ResourceManager.h"
#include "support/HeadlessEngine.h"

namespace {

const int VIEW_HEIGHT = 24;
const int VIEW_WIDTH = 80;
const int HUD_ROWS = 3;  // the top view objects and their borders
const int STEPS_PER_SECOND = 30;

// The build copies the game's data beside the font that it copies for the
// tests, and synthesizes the sounds into the "sounds/" folder there.
std::string gamePath(const std::string& relative) {
  const std::string font = VANTOR_FONT_PATH;
  return font.substr(0, font.find_last_of('/') + 1) + relative;
}

struct SpriteFile {
  const char* label;
  const char* file;
  int width;
  int height;
};

const SpriteFile SPRITES[] = {
    {"sans", "sprites/sans-spr.txt", 40, 4},
    {"boss", "sprites/boss-spr.txt", 33, 9},
    {"drelk", "sprites/drelk-spr.txt", 12, 3},
    {"ship", "sprites/player-spr.txt", 6, 3},
    {"bullet", "sprites/bullet-spr.txt", 1, 1},
    {"enemy-bullet", "sprites/bullet-enemy.txt", 1, 1},
    {"explosion", "sprites/explosion-spr.txt", 13, 5},
    {"gamestart", "sprites/gamestart-spr.txt", 64, 19},
    {"gameover", "sprites/gameover-spr.txt", 56, 15},
    {"win", "sprites/win-spr.txt", 64, 17},
};

struct AudioFile {
  const char* label;
  const char* file;
  float shortest;  // seconds
  float longest;
};

const AudioFile SOUNDS[] = {
    {"fire", "sounds/fire.wav", 0.05f, 0.2f},
    {"explode", "sounds/explode.wav", 0.5f, 3.0f},
    {"nuke", "sounds/nuke.wav", 0.5f, 3.0f},
    {"game over", "sounds/game-over.wav", 0.5f, 3.0f},
    {"enemydead", "sounds/enemy-dead.wav", 0.1f, 1.0f},
    {"enemyhit", "sounds/enemy-hit.wav", 0.02f, 0.2f},
};

const AudioFile MUSICS[] = {
    {"GameDead", "sounds/GameDead.wav", 5.0f, 20.0f},
    {"start music", "sounds/start-music.wav", 5.0f, 20.0f},
    {"gameplay", "sounds/gameplay.wav", 5.0f, 20.0f},
    {"InGameBGM", "sounds/InGameBGM.wav", 5.0f, 20.0f},
    {"VictoryBGM", "sounds/VictoryBGM.wav", 5.0f, 20.0f},
    {"Boss1BattleBGM", "sounds/Boss1BattleBGM.wav", 5.0f, 20.0f},
};

// Rows above and below the centre row of a sprite drawn centred on a cell.
float halfHeight(const vt::Sprite& sprite) {
  return (sprite.getHeight() - 1) / 2.0f;
}
float halfWidth(const vt::Sprite& sprite) {
  return (sprite.getWidth() - 1) / 2.0f;
}

std::string firstLine(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  return line;
}

int peak(const sf::SoundBuffer& buffer) {
  const sf::Int16* samples = buffer.getSamples();
  int loudest = 0;
  for (std::size_t i = 0; i < buffer.getSampleCount(); i++) {
    loudest = std::max(loudest, std::abs(static_cast<int>(samples[i])));
  }
  return loudest;
}

class DataFilesTest : public ::testing::Test {
 protected:
  DataFilesTest() {
    rm.startUp();
    for (const SpriteFile& file : SPRITES) rm.loadSprite(gamePath(file.file), file.label);
  }
  ~DataFilesTest() override { rm.shutDown(); }

  const vt::Sprite& sprite(const std::string& label) {
    const vt::Sprite* p_sprite = rm.getSprite(label);
    if (p_sprite == nullptr) throw std::runtime_error("no sprite '" + label + "'");
    return *p_sprite;
  }
  // The character at a column and row of a sprite's first frame.
  char cell(const std::string& label, int column, int row) {
    const vt::Sprite& shown = sprite(label);
    return shown.getFrame(0).getString()[static_cast<std::size_t>(row * shown.getWidth() + column)];
  }
  void expectSound(const AudioFile& file, const sf::SoundBuffer& buffer) {
    SCOPED_TRACE(file.file);
    EXPECT_EQ(1u, buffer.getChannelCount());
    EXPECT_GE(buffer.getDuration().asSeconds(), file.shortest);
    EXPECT_LE(buffer.getDuration().asSeconds(), file.longest);
    EXPECT_LT(peak(buffer), 32767) << "the samples clip";
    EXPECT_GT(peak(buffer), 3000) << "the sound is nearly silent";
  }

  test::HeadlessEngine engine;
  vt::ResourceManager& rm = vt::ResourceManager::getInstance();
};

TEST_F(DataFilesTest, EverySpriteOfTheTableLoadsWithItsSize) {
  EXPECT_EQ(10, rm.getSpriteCount());
  for (const SpriteFile& file : SPRITES) {
    SCOPED_TRACE(file.file);
    ASSERT_NE(nullptr, rm.getSprite(file.label));
    EXPECT_EQ(file.width, sprite(file.label).getWidth());
    EXPECT_EQ(file.height, sprite(file.label).getHeight());
    EXPECT_GE(sprite(file.label).getFrameCount(), 1);
  }
}

TEST_F(DataFilesTest, BothSpriteFormatsAreInUse) {
  int sectioned = 0;
  for (const SpriteFile& file : SPRITES) sectioned += firstLine(gamePath(file.file)) == "<HEADER>";
  EXPECT_GT(sectioned, 0);
  EXPECT_LT(sectioned, static_cast<int>(std::size(SPRITES)));
}

// The hero fires from 0.5 cells either side of its centre: the two middle
// columns of an even-width ship, where its gun barrels are.
TEST_F(DataFilesTest, TheHerosTwinShotsLeaveFromItsGuns) {
  const int width = sprite("ship").getWidth();
  ASSERT_EQ(0, width % 2);
  EXPECT_EQ('|', cell("ship", width / 2 - 1, 0));
  EXPECT_EQ('|', cell("ship", width / 2, 0));
}

// A drelk drops its shots 5.5 and 6.5 cells right of its centre while it
// flies left: from the last column of its tail and just behind it.
TEST_F(DataFilesTest, DrelkShotsDropFromItsTail) {
  EXPECT_FLOAT_EQ(5.5f, halfWidth(sprite("drelk")));
  EXPECT_NE(' ', cell("drelk", sprite("drelk").getWidth() - 1, 1));
}

// The boss sits at row 24 / 2 - 7 = 5 and fans its shots out from 3 cells
// right of its centre, on its centre row: the middle of its maw.
TEST_F(DataFilesTest, TheBossFitsAboveTheMiddleOfTheViewAndFiresFromItsMaw) {
  const vt::Sprite& boss = sprite("boss");
  const float row = VIEW_HEIGHT / 2 - 7;
  EXPECT_GE(row - halfHeight(boss), 1.0f);
  EXPECT_LT(row + halfHeight(boss), VIEW_HEIGHT / 2.0f);
  const int centre_row = static_cast<int>(halfHeight(boss));
  EXPECT_EQ('V', cell("boss", static_cast<int>(halfWidth(boss)) + 3, centre_row));
}

// Title and closing screens sit at the centre of the view, clear of the
// score display at the top.
TEST_F(DataFilesTest, ScreensFitTheViewBelowTheHeadsUpDisplay) {
  for (const char* label : {"gamestart", "gameover", "win"}) {
    SCOPED_TRACE(label);
    EXPECT_LE(sprite(label).getWidth(), VIEW_WIDTH);
    EXPECT_GE(VIEW_HEIGHT / 2 - halfHeight(sprite(label)), HUD_ROWS);
  }
}

// Sprites with a shape let the stars show through the blanks around it.
TEST_F(DataFilesTest, ShapedSpritesLetTheBackgroundShowThrough) {
  for (const char* label : {"boss", "drelk", "ship", "explosion", "gameover", "win"}) {
    EXPECT_EQ(' ', sprite(label).getTransparency()) << label;
  }
}

// A closing screen stays for its frame count times its slowdown in steps.
TEST_F(DataFilesTest, ClosingScreensAnimateForAFewSeconds) {
  for (const char* label : {"gameover", "win"}) {
    SCOPED_TRACE(label);
    const int steps = sprite(label).getFrameCount() * sprite(label).getSlowdown();
    EXPECT_GE(steps, 3 * STEPS_PER_SECOND);
    EXPECT_LE(steps, 8 * STEPS_PER_SECOND);
  }
}

// An explosion lives one step per frame, so every frame must last one step.
TEST_F(DataFilesTest, ExplosionShowsEveryFrameOnce) {
  EXPECT_LE(sprite("explosion").getSlowdown(), 1);
  EXPECT_GE(sprite("explosion").getFrameCount(), 5);
}

TEST_F(DataFilesTest, EverySoundLoadsAndDoesNotClip) {
  for (const AudioFile& file : SOUNDS) {
    ASSERT_EQ(0, rm.loadSound(gamePath(file.file), file.label)) << file.file;
    sf::SoundBuffer buffer;
    ASSERT_TRUE(buffer.loadFromFile(gamePath(file.file)));
    expectSound(file, buffer);
  }
}

// A music loops without a click: its first and last samples are silent.
TEST_F(DataFilesTest, EveryMusicLoadsAndLoopsWithoutAClick) {
  for (const AudioFile& file : MUSICS) {
    ASSERT_EQ(0, rm.loadMusic(gamePath(file.file), file.label)) << file.file;
    sf::SoundBuffer buffer;
    ASSERT_TRUE(buffer.loadFromFile(gamePath(file.file)));
    expectSound(file, buffer);
    const sf::Int16* samples = buffer.getSamples();
    EXPECT_LE(std::abs(samples[0]), 64) << file.file;
    EXPECT_LE(std::abs(samples[buffer.getSampleCount() - 1]), 64) << file.file;
  }
}

}  // namespace
