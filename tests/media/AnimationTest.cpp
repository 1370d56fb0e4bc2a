#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "media/Animation.h"
#include "media/Sprite.h"

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
  for (int i = 0; i < count; i++, animation.draw(vt::Vector(5, 5)))
    shown.push_back(animation.getIndex());
  return shown;
}

}  // namespace

TEST(Animation, StepsBySlowdownWrapsFreezesAndRestarts) {
  auto p_sprite = digitSprite(4, 3);
  Animation animation;
  animation.setSprite(p_sprite.get());
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
  EXPECT_EQ(p_fast->getFrame(3).getString() + p_fast->getFrame(-1).getString(), "");
  // Extreme slowdowns and counts step without overflow: slowdown, count,
  // then frame and count after a draw.
  const int cases[][4] = {
      {INT_MAX, INT_MAX - 2, 0, INT_MAX - 1}, {INT_MAX, INT_MAX, 1, 0}, {INT_MIN, INT_MAX, 1, 0}};
  for (const auto& c : cases) {
    auto p_extreme = digitSprite(2, c[0]);
    animation.setSprite(p_extreme.get());
    animation.setSlowdownCount(c[1]);
    animation.draw(vt::Vector(5, 5));
    EXPECT_EQ(std::pair(animation.getIndex(), animation.getSlowdownCount()), std::pair(c[2], c[3]))
        << c[0] << ", " << c[1];
  }
}
