#include <gtest/gtest.h>

#include "media/Animation.h"
#include "media/Frame.h"
#include "media/Sprite.h"
#include "support/HeadlessEngine.h"

using vt::Frame;
using vt::Sprite;
using vt::Vector;

namespace {

// A sprite of frame_count frames, each filled with its own digit.
std::unique_ptr<Sprite> digitSprite(int frame_count, int slowdown) {
  auto p_sprite = std::make_unique<Sprite>(frame_count);
  p_sprite->setWidth(1);
  p_sprite->setHeight(1);
  p_sprite->setSlowdown(slowdown);
  p_sprite->setLabel("digits");
  for (int i = 0; i < frame_count; i++) {
    p_sprite->addFrame(Frame(1, 1, std::string(1, static_cast<char>('0' + i))));
  }
  return p_sprite;
}

}  // namespace

TEST(Animation, SlowdownSteppingAndFreezing) {
  test::HeadlessEngine engine;
  auto p_sprite = digitSprite(4, 3);
  vt::Animation animation;
  animation.setSprite(p_sprite.get());
  EXPECT_EQ(animation.getName(), "digits");
  std::vector<int> shown;
  for (int call = 0; call < 10; call++) {
    shown.push_back(animation.getIndex());
    animation.draw(Vector(5, 5));
  }
  // Frames change on the 3rd, 6th and 9th call.
  EXPECT_EQ(shown, (std::vector<int>{0, 0, 0, 1, 1, 1, 2, 2, 2, 3}));

  animation.setSlowdownCount(-1);
  for (int call = 0; call < 5; call++) animation.draw(Vector(5, 5));
  EXPECT_EQ(animation.getIndex(), 3);
  EXPECT_EQ(animation.getSlowdownCount(), -1);

  // Setting a sprite restarts at frame 0 but keeps the count.
  animation.setSprite(p_sprite.get());
  EXPECT_EQ(animation.getIndex(), 0);
  EXPECT_EQ(animation.getSlowdownCount(), -1);
}

TEST(Animation, SingleFramesAndZeroSlowdownAndWrapping) {
  test::HeadlessEngine engine;
  auto p_single = digitSprite(1, 2);
  vt::Animation still;
  still.setSprite(p_single.get());
  for (int call = 0; call < 5; call++) still.draw(Vector());
  EXPECT_EQ(still.getIndex(), 0);
  EXPECT_EQ(still.getSlowdownCount(), 1);

  auto p_fast = digitSprite(3, 0);
  vt::Animation fast;
  fast.setSprite(p_fast.get());
  std::vector<int> shown;
  for (int call = 0; call < 4; call++) {
    fast.draw(Vector());
    shown.push_back(fast.getIndex());
  }
  EXPECT_EQ(shown, (std::vector<int>{1, 2, 0, 1}));
}

TEST(Animation, BoxesFollowTheSprite) {
  vt::Animation animation;
  EXPECT_EQ(animation.getBox(), vt::Box(Vector(-0.5f, -0.5f), 0.99f, 0.99f));
  Sprite wide(1);
  wide.setWidth(5);
  wide.setHeight(3);
  animation.setSprite(&wide);
  EXPECT_EQ(animation.getBox(), vt::Box(Vector(-2.5f, -1.5f), 5, 3));
  Sprite dot(1);
  dot.setWidth(1);
  dot.setHeight(1);
  animation.setSprite(&dot);
  EXPECT_EQ(animation.getBox(), vt::Box(Vector(-0.5f, -0.5f), 1, 1));
}

TEST(Sprite, CapacityAndFrameLookup) {
  Sprite sprite(2);
  EXPECT_EQ(sprite.addFrame(Frame(1, 1, "a")), 0);
  EXPECT_EQ(sprite.addFrame(Frame(1, 1, "b")), 0);
  EXPECT_EQ(sprite.addFrame(Frame(1, 1, "c")), -1);
  EXPECT_EQ(sprite.getFrameCount(), 2);
  EXPECT_EQ(sprite.getFrame(1).getString(), "b");
  EXPECT_EQ(sprite.getFrame(2).getString(), "");
  EXPECT_EQ(sprite.getFrame(-1).getString(), "");
  // An empty frame draws nothing and succeeds.
  EXPECT_EQ(sprite.draw(5, Vector(), 0), 0);
  EXPECT_EQ(Frame(2, 1, "##").draw(Vector(), vt::WHITE, '#'), 0);
}
