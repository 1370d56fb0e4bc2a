#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/Box.h"
#include "core/LogManager.h"
#include "media/ResourceManager.h"
#include "support/HeadlessEngine.h"
#include "support/ResourceEngine.h"
#include "world/Object.h"

using Lines = std::vector<std::string>;

namespace {

vt::ResourceManager& rm() {
  return vt::ResourceManager::getInstance();
}

const char* const ONE_FRAME = "1\n5\n3\n0\nred\n.....\n.....\n.....\n";

// An object whose modified flags a test can clear.
class FlagObject : public vt::Object {
 public:
  using vt::Object::setModified;
};

}  // namespace

TEST(ResourceManager, RefusesWorkWhenNotStarted) {
  test::HeadlessEngine engine;
  const std::string file = engine.getDirectory() + "/ship.txt";
  EXPECT_EQ(rm().getType(), "ResourceManager");
  EXPECT_EQ(rm().loadSprite(file, "ship"), -1);
  EXPECT_EQ(rm().unloadSprite("ship"), -1);
  EXPECT_EQ(rm().loadSound(file, "fire"), -1);
  EXPECT_EQ(rm().unloadSound("fire"), -1);
  EXPECT_EQ(rm().loadMusic(file, "theme"), -1);
  EXPECT_EQ(rm().unloadMusic("theme"), -1);
  const std::string log = engine.logText();
  int refusals = 0;
  for (std::size_t at = log.find(" ResourceManager not started!\n"); at != std::string::npos;
       at = log.find(" ResourceManager not started!\n", at + 1)) {
    refusals++;
  }
  EXPECT_EQ(refusals, 6);
  EXPECT_EQ(log.find("Loading sprite"), std::string::npos);
}

TEST(ResourceManager, StartAndShutDown) {
  test::ResourceEngine engine;
  vt::LogManager::getInstance().setLogLevel(5);
  EXPECT_EQ(rm().startUp(), -1);
  EXPECT_EQ(engine.newLogLines().back(),
            "ResourceManager::startup(): Warning! ResourceManager already started.");
  ASSERT_EQ(engine.loadSpriteText("ship", ONE_FRAME), 0);
  rm().shutDown();
  EXPECT_EQ(engine.newLogLines().back(), "RM::shutDown(): successfully stopped.");
  EXPECT_FALSE(rm().isStarted());
  EXPECT_EQ(rm().getSprite("ship"), nullptr);
  EXPECT_EQ(rm().getSpriteCount(), 0);
  EXPECT_EQ(rm().loadSprite(engine.writeFile("ship.txt", ONE_FRAME), "ship"), -1);

  EXPECT_EQ(rm().startUp(), 0);
  EXPECT_EQ(engine.newLogLines().back(), "RM::startUp(): successfully started.");
  EXPECT_EQ(engine.loadSpriteText("ship", ONE_FRAME), 0);
  EXPECT_EQ(rm().getSpriteCount(), 1);
}

TEST(ResourceManager, SpriteTableByLabel) {
  test::ResourceEngine engine;
  for (const char* label : {"a", "b", "c", "b"}) {
    ASSERT_EQ(engine.loadSpriteText(label, ONE_FRAME), 0);
  }
  vt::Sprite* p_first_b = rm().getSprite("b");
  vt::Sprite* p_c = rm().getSprite("c");
  ASSERT_NE(p_first_b, nullptr);
  vt::LogManager::getInstance().setLogLevel(5);
  engine.newLogLines();
  EXPECT_EQ(rm().getSprite("B"), nullptr);
  EXPECT_EQ(engine.newLogLines(), (Lines{"RM::getSprite(): Looking for sprite 'B'.",
                                         "RM::getSprite(): Warning! Sprite 'B' not found."}));
  // The first of two equal labels is found and unloaded first; the others
  // keep their order.
  EXPECT_EQ(rm().unloadSprite("b"), 0);
  EXPECT_EQ(rm().getSpriteCount(), 3);
  EXPECT_EQ(rm().getSprite("c"), p_c);
  vt::Sprite* p_second_b = rm().getSprite("b");
  EXPECT_NE(p_second_b, nullptr);
  EXPECT_EQ(rm().unloadSprite("b"), 0);
  EXPECT_EQ(rm().unloadSprite("b"), -1);
  EXPECT_EQ(rm().unloadSprite("a"), 0);
  EXPECT_EQ(rm().getSprite("c"), p_c);
  EXPECT_EQ(rm().getSpriteCount(), 1);
}

TEST(ResourceManager, AtMostAThousandSprites) {
  test::ResourceEngine engine;
  const std::string file = engine.writeFile("dot.txt", "1\n1\n1\n0\nwhite\n*\n");
  for (int i = 0; i < vt::MAX_SPRITES; i++) {
    ASSERT_EQ(rm().loadSprite(file, "dot" + std::to_string(i)), 0) << i;
  }
  engine.newLogLines();
  EXPECT_EQ(rm().loadSprite(file, "one-too-many"), -1);
  EXPECT_EQ(engine.newLogLines(),
            (Lines{"RM::loadRobustSprite(): Error! Cannot add more Sprites (max is 1000).",
                   "RM::loadRobustSprite(): Sprite 'one-too-many' not loaded."}));
  EXPECT_EQ(rm().getSpriteCount(), vt::MAX_SPRITES);
  EXPECT_NE(rm().getSprite("dot999"), nullptr);
  EXPECT_EQ(rm().unloadSprite("dot0"), 0);
  EXPECT_EQ(rm().loadSprite(file, "one-more"), 0);
  EXPECT_NE(rm().getSprite("one-more"), nullptr);
}

TEST(ResourceManager, ObjectTakesSpriteAndItsBox) {
  test::ResourceEngine engine;
  ASSERT_EQ(engine.loadSpriteText("ship", ONE_FRAME), 0);
  auto* p_object = new FlagObject;
  p_object->setPosition(vt::Vector(20, 10));
  const vt::Box default_box = p_object->getBox();
  p_object->setModified(vt::BOX, false);
  p_object->setModified(vt::ANIMATION, false);

  engine.newLogLines();
  EXPECT_EQ(p_object->setSprite("boat"), -1);
  EXPECT_EQ(engine.newLogLines(), (Lines{"RM::getSprite(): Warning! Sprite 'boat' not found.",
                                         "Object::setSprite(): Warning! Sprite 'boat' not found"}));
  EXPECT_EQ(p_object->getBox(), default_box);
  EXPECT_FALSE(p_object->isModified(vt::BOX));
  EXPECT_EQ(p_object->getAnimation().getSprite(), nullptr);

  EXPECT_EQ(p_object->setSprite("ship"), 0);
  EXPECT_EQ(p_object->getAnimation().getSprite(), rm().getSprite("ship"));
  EXPECT_EQ(p_object->getAnimation().getName(), "ship");
  EXPECT_EQ(p_object->getBox(), vt::Box(vt::Vector(-2.5f, -1.5f), 5, 3));
  EXPECT_TRUE(p_object->isModified(vt::BOX));
  EXPECT_FALSE(p_object->isModified(vt::ANIMATION));
}
