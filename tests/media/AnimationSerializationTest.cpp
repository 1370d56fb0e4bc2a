#include <gtest/gtest.h>

#include <climits>

#include "media/Animation.h"
#include "media/ResourceManager.h"
#include "media/Sprite.h"
#include "support/ResourceEngine.h"

using vt::Animation;

namespace {

const char* const TWO_FRAMES = "2\n3\n1\n2\ncyan\nabc\ndef\n";

}  // namespace

TEST(AnimationSerialization, WrittenWhenChosenAndThenNotModified) {
  test::ResourceEngine engine;
  Animation animation;
  EXPECT_EQ(animation.serialize(), "sprite_name:,sprite_index:0,sprite_slowdown_count:0,");
  EXPECT_FALSE(animation.isModified());
  EXPECT_EQ(animation.serialize(), "");
  EXPECT_EQ(animation.serialize("POSITION,"), "");
  animation.setIndex(4);
  animation.setSlowdownCount(-1);
  EXPECT_EQ(animation.serialize("POSITION,"), "");
  EXPECT_TRUE(animation.isModified());
  EXPECT_EQ(animation.serialize("ID,ANIMATION,"),
            "sprite_name:,sprite_index:4,sprite_slowdown_count:-1,");
  EXPECT_EQ(animation.serialize("ALL"), "sprite_name:,sprite_index:4,sprite_slowdown_count:-1,");
}

TEST(AnimationSerialization, ReadsSpritesByNameAndOnlyNumbersItCanRead) {
  test::ResourceEngine engine;
  ASSERT_EQ(engine.loadSpriteText("keep", TWO_FRAMES), 0);
  vt::Sprite* p_keep = vt::ResourceManager::getInstance().getSprite("keep");
  Animation animation;
  animation.setIndex(1);
  animation.serialize("ALL");
  EXPECT_EQ(animation.deserialize("sprite_name:keep,sprite_slowdown_count:-1,"), 0);
  EXPECT_EQ(animation.getSprite(), p_keep);
  EXPECT_EQ(animation.getName(), "keep");
  // Setting the sprite starts it at frame 0.
  EXPECT_EQ(animation.getIndex(), 0);
  EXPECT_EQ(animation.getSlowdownCount(), -1);
  EXPECT_TRUE(animation.isModified());

  Animation copy;
  copy.deserialize(animation.serialize("ALL"));
  EXPECT_EQ(copy.getSprite(), p_keep);
  EXPECT_EQ(copy.getSlowdownCount(), -1);

  // An unknown name is kept, the sprite shown stays.
  animation.deserialize("sprite_name:ghost,sprite_index:1,");
  EXPECT_EQ(animation.getName(), "ghost");
  EXPECT_EQ(animation.getSprite(), p_keep);
  EXPECT_EQ(animation.getIndex(), 1);
  EXPECT_NE(engine.logText().find("Animation::Match(): Sprite 'ghost' not found"),
            std::string::npos);

  animation.deserialize("sprite_index:two,sprite_slowdown_count:99999999999,");
  animation.deserialize("");
  EXPECT_EQ(animation.getIndex(), 1);
  EXPECT_EQ(animation.getSlowdownCount(), -1);
}

TEST(AnimationSerialization, ExtremeCountsWrapWithoutOverflow) {
  test::ResourceEngine engine;
  ASSERT_EQ(engine.loadSpriteText("keep", TWO_FRAMES), 0);
  Animation animation;
  animation.deserialize("sprite_name:keep,sprite_index:" + std::to_string(INT_MAX) +
                        ",sprite_slowdown_count:" + std::to_string(INT_MAX) + ",");
  // The count is past the slowdown of 2: the frame moves on, past the last
  // one and so back to the first.
  animation.draw(vt::Vector(5, 5));
  EXPECT_EQ(animation.getIndex(), 0);
  EXPECT_EQ(animation.getSlowdownCount(), 0);
  animation.setIndex(-5);
  animation.setSlowdownCount(1);
  animation.draw(vt::Vector(5, 5));
  EXPECT_EQ(animation.getIndex(), -4);
}
