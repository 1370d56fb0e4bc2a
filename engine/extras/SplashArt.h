#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/Color.h"
#include "media/Sprite.h"

namespace vt {

// The splash screen's pictures, built in memory.
std::unique_ptr<Sprite> makeBannerSprite();
std::unique_ptr<Sprite> makeEmblemSprite();
std::unique_ptr<Sprite> makeSecondEmblemSprite();

// A sprite from rows of text, one list of rows per frame.
std::unique_ptr<Sprite> makeSprite(const std::string& label, Color color, int slowdown,
                                   const std::vector<std::vector<std::string>>& frames);

}  // namespace vt
