#include "extras/SplashArt.h"

namespace vt {

std::unique_ptr<Sprite> makeSprite(const std::string& label, Color color, int slowdown,
                                   const std::vector<std::vector<std::string>>& frames) {
  auto p_sprite = std::make_unique<Sprite>(static_cast<int>(frames.size()));
  const auto width = static_cast<int>(frames.front().front().size());
  const auto height = static_cast<int>(frames.front().size());
  p_sprite->setWidth(width);
  p_sprite->setHeight(height);
  p_sprite->setColor(color);
  p_sprite->setSlowdown(slowdown);
  p_sprite->setLabel(label);
  for (const auto& rows : frames) {
    std::string text;
    for (const std::string& row : rows) text += row;
    p_sprite->addFrame(Frame(width, height, text));
  }
  return p_sprite;
}

std::unique_ptr<Sprite> makeBannerSprite() {
  const std::vector<std::string> slanted = {
      "                                               ",
      "      _   _   ___   _   _  _____   ___   ____  ",
      "    / / / / / _ \\ / \\ / //_   _/ / _ \\ /  _ \\  ",
      "   / / / // /_/ //  \\/ /  / /  / / / // /_) /  ",
      "  / /_/ //  _  // . ` /  / /  / / / //  _ <    ",
      "  \\   / / / / // /\\  /  / /  / /_/ // / \\ \\    ",
      "  \\_/  /_/ /_//_/ \\_/  /_/   \\___/ /_/  \\_     ",
      "                                               ",
  };
  const std::vector<std::string> upright = {
      "                                               ",
      " _   _    ___    _   _   _____    ___    ____  ",
      "| | | |  / _ \\  | \\ | | |_   _|  / _ \\  |  _ \\ ",
      "| | | | | |_| | |  \\| |   | |   | | | | | |_) |",
      "| |_| | |  _  | | . ` |   | |   | | | | |  _ < ",
      " \\   /  | | | | | |\\  |   | |   | |_| | | | \\ \\",
      "  \\_/   |_| |_| |_| \\_|   |_|    \\___/  |_|  \\_",
      "                                               ",
  };
  return makeSprite("splash", GREEN, 1, {slanted, upright});
}

std::unique_ptr<Sprite> makeEmblemSprite() {
  const std::vector<std::string> wings_up = {
      "##   _   ##", "###=(@)=###",  " ##==|==## ", "  #=|||=#  ",
      "    |||    ", "    \\|/    ", "     '     ",
  };
  const std::vector<std::string> wings_down = {
      "     _     ", "   =(@)=   ",  " ##==|==## ", "###=|||=###",
      "##  |||  ##", "    \\|/    ", "     '     ",
  };
  return makeSprite("splash-vantor", BLUE, 2, {wings_up, wings_down});
}

std::unique_ptr<Sprite> makeSecondEmblemSprite() {
  const std::vector<std::string> badge = {
      "  .---.  ", " / (@) \\ ", "|  \\|/  |", "| VANTOR|", " \\ === / ", "  `---'  ",
  };
  return makeSprite("splash-vantor", GREEN, 1, {badge});
}

}  // namespace vt
