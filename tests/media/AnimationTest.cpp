#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "media/Animation.h"
#include "media/ResourceManager.h"
#include "support/ResourceEngine.h"

using vt::Animation;
using Shown = std::vector<int>;

namespace {

// A sprite of frame_count one-cell frames.
std::unique_ptr<vt::Sprite> digitSprite(int frame_count, int slowdown) {
  auto p_sprite = std::make_unique<vt::Sprite>(frame_count);
  p_sprite->setSlowdown(slowdown);
  for (int i = 0; i < frame_count; i++) p_sprite->addFrame(vt::Frame(1, 1, "0"));
  return p_sprite;
}

// The frame shown before each of count draws.
Shown framesShown(Animation& animation, int count) {
  Shown shown;
  for (int i = 0; i < count; i++, animation.draw(vt::Vector(5, 5))) {
    shown.push_back(animation.getIndex());
  }
  return shown;
}

}  // namespace

TEST(Animation, StepsBySlowdownWrapsFreezesAndRestarts) {
  test::ResourceEngine engine;
  auto p_sprite = digitSprite(4, 3);
  Animation animation;
  EXPECT_EQ(animation.getBox(), vt::Box(vt::Vector(-0.5f, -0.5f), 0.99f, 0.99f));
  p_sprite->setWidth(5);
  p_sprite->setHeight(3);
  animation.setSprite(p_sprite.get());
  EXPECT_EQ(animation.getBox(), vt::Box(vt::Vector(-2.5f, -1.5f), 5, 3));
  EXPECT_EQ(framesShown(animation, 13), (Shown{0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 0}));
  animation.setSlowdownCount(-1);
  EXPECT_EQ(framesShown(animation, 3), (Shown{0, 0, 0}));
  // A new sprite starts at frame 0 and keeps the count.
  animation.setIndex(2);
  animation.setSprite(p_sprite.get());
  EXPECT_EQ(animation.getIndex() * 10 + animation.getSlowdownCount(), -1);
  auto p_fast = digitSprite(3, 0);
  animation.setSprite(p_fast.get());
  animation.setSlowdownCount(0);
  EXPECT_EQ(framesShown(animation, 5), (Shown{0, 1, 2, 0, 1}));
  EXPECT_EQ(p_fast->addFrame(vt::Frame(1, 1, "c")), -1);
  EXPECT_EQ(p_fast->getFrame(3).getString() + p_fast->getFrame(-1).getString(), "");
  // Extreme slowdowns and counts step without overflow: slowdown, count,
  // then frame and count after a draw.
  const int cases[][4] = {{INT_MAX, INT_MAX - 2, 0, INT_MAX - 1},
                          {INT_MAX, INT_MAX - 1, 1, 0},
                          {INT_MAX, INT_MAX, 1, 0},
                          {INT_MIN, 0, 1, 0},
                          {INT_MIN, INT_MAX, 1, 0},
                          {2, INT_MAX, 1, 0}};
  for (const auto& c : cases) {
    auto p_extreme = digitSprite(2, c[0]);
    animation.setSprite(p_extreme.get());
    animation.setSlowdownCount(c[1]);
    animation.draw(vt::Vector(5, 5));
    EXPECT_EQ(std::pair(animation.getIndex(), animation.getSlowdownCount()), std::pair(c[2], c[3]))
        << c[0] << ", " << c[1];
  }
}

TEST(Animation, SerializesWhenChosenAndReadsNumbersAsAtoiDoes) {
  test::ResourceEngine engine;
  ASSERT_EQ(engine.loadSpriteText("keep", "2\n3\n1\n2\ncyan\nabc\ndef\n"), 0);
  vt::Sprite* p_keep = vt::ResourceManager::getInstance().getSprite("keep");
  Animation animation;
  EXPECT_EQ(animation.serialize() + animation.serialize(),
            "sprite_name:,sprite_index:0,sprite_slowdown_count:0,");
  animation.setIndex(1);
  EXPECT_EQ(animation.serialize("POSITION,"), "");
  EXPECT_EQ(animation.serialize("ID,ANIMATION,"),
            "sprite_name:,sprite_index:1,sprite_slowdown_count:0,");
  EXPECT_EQ(animation.deserialize("sprite_name:keep,sprite_slowdown_count:-1,"), 0);
  EXPECT_EQ(animation.serialize(), "sprite_name:keep,sprite_index:0,sprite_slowdown_count:-1,");
  // An unknown name is kept; the sprite shown stays. Numbers read as atoi
  // reads them, clamped to an int.
  animation.deserialize("sprite_name:ghost,sprite_index:12ab,sprite_slowdown_count:99999999999,");
  EXPECT_EQ(std::pair(animation.getName(), animation.getSprite()),
            std::pair(std::string("ghost"), p_keep));
  EXPECT_EQ(std::pair(animation.getIndex(), animation.getSlowdownCount()), std::pair(12, INT_MAX));
  animation.deserialize("sprite_index:abc,sprite_slowdown_count:-99999999999,");
  EXPECT_EQ(std::pair(animation.getIndex(), animation.getSlowdownCount()), std::pair(0, INT_MIN));
}
