#include "media/TextLabel.h"

namespace vt {

TextLabel::TextLabel(Vector position, std::string init_text, Color init_color) : color(init_color) {
  setType("TextLabel");
  setSolidness(SPECTRAL);
  setPosition(position);
  setText(std::move(init_text));
}

void TextLabel::setText(std::string new_text) {
  text = std::move(new_text);
  fitBoxToText();
}

void TextLabel::setJustification(Justification new_justification) {
  justification = new_justification;
  fitBoxToText();
}

void TextLabel::fitBoxToText() {
  const auto length = static_cast<float>(text.size());
  float first = 0;
  if (justification == CENTER_JUSTIFIED) first = -static_cast<float>(text.size() / 2);
  if (justification == RIGHT_JUSTIFIED) first = -length;
  setBox(Box(Vector(first - 0.5f, -0.5f), length, 1.0f));
}

int TextLabel::draw() {
  return DisplayManager::getInstance().drawString(getDrawPosition(), text, justification, color);
}

}  // namespace vt
