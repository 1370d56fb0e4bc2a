#include "media/ViewObject.h"

#include "core/KeyReader.h"
#include "core/LogManager.h"
#include "core/Utility.h"
#include "media/DisplayManager.h"
#include "media/EventView.h"
#include "world/WorldManager.h"

namespace vt {

namespace {

constexpr KeyReader READER("ViewObject::deserialize()");

// Selection names of the view attributes, in the order of their flags.
const char* const VIEW_GROUP_NAMES[] = {"STRING,", "VALUE,",    "BORDER,",
                                        "COLOR,",  "LOCATION,", "DRAW_VALUE,"};

}  // namespace

ViewObject::ViewObject() {
  for (bool& flag : view_modified) flag = true;
  setSolidness(SPECTRAL);
  setAltitude(MAX_ALTITUDE);
  setType("ViewObject");
  setLocation(TOP_CENTER);
  registerInterest(VIEW_EVENT);
}

int ViewObject::setPosition(Vector new_position) {
  if (new_position == getPosition()) return 0;
  location = -1;
  Object::setPosition(new_position);
  view_modified[VIEW_LOCATION] = true;
  return 0;
}

void ViewObject::setLocation(int new_location) {
  if (new_location < TOP_LEFT || new_location > BOTTOM_RIGHT) {
    LogManager::getInstance().writeLog(
        "ViewObject::setLocation(): Warning! Location out of range (%d). Ignored.", new_location);
    return;
  }
  const Box view = WorldManager::getInstance().getView();
  const float width = view.getHorizontal();
  const float height = view.getVertical();
  static const float COLUMN_X[] = {1.0f / 6, 3.0f / 6, 5.0f / 6};
  const float x = width * COLUMN_X[new_location % 3];
  float y = 0;
  // Without a border the top and centre rows move up, the bottom row down.
  switch (new_location / 3) {
    case 0:
      y = border ? 1 : 0;
      break;
    case 1:
      y = border ? height / 2 : height / 2 - 1;
      break;
    default:
      y = border ? height - 2 : height - 1;
      break;
  }
  setPosition(Vector(x, y));
  location = new_location;
  view_modified[VIEW_LOCATION] = true;
}

void ViewObject::setValue(int new_value) {
  if (new_value == value) return;
  value = new_value;
  view_modified[VIEW_VALUE] = true;
}

void ViewObject::setBorder(bool new_border) {
  if (new_border == border) return;
  border = new_border;
  view_modified[VIEW_BORDER] = true;
}

void ViewObject::setColor(Color new_color) {
  if (new_color == color) return;
  color = new_color;
  view_modified[VIEW_COLOR] = true;
}

void ViewObject::setViewString(std::string new_view_string) {
  if (new_view_string == view_string) return;
  view_string = std::move(new_view_string);
  view_modified[VIEW_STRING] = true;
}

void ViewObject::setDrawValue(bool new_draw_value) {
  if (new_draw_value == draw_value) return;
  draw_value = new_draw_value;
  view_modified[VIEW_DRAW_VALUE] = true;
}

int ViewObject::eventHandler(const Event* p_event) {
  if (p_event->getType() != VIEW_EVENT) return Object::eventHandler(p_event);
  const auto* p_view_event = static_cast<const EventView*>(p_event);
  if (p_view_event->getTag() != view_string) return 0;
  setValue(p_view_event->getDelta() ? value + p_view_event->getValue() : p_view_event->getValue());
  return 1;
}

std::string ViewObject::displayText() const {
  const std::string number = std::to_string(value);
  if (border) return " " + view_string + " " + (draw_value ? number + " " : "");
  return view_string + (draw_value ? " " + number : "");
}

int ViewObject::draw() {
  DisplayManager& display_manager = DisplayManager::getInstance();
  const std::string text = displayText();
  const Vector position = viewToWorld(getPosition());
  int result = display_manager.drawString(position, text, CENTER_JUSTIFIED, color);
  if (!border) return result;
  const std::string dashes(text.size(), '-');
  result += display_manager.drawString(position - Vector(0, 1), dashes, CENTER_JUSTIFIED, color);
  result += display_manager.drawString(position + Vector(0, 1), dashes, CENTER_JUSTIFIED, color);
  const int length = static_cast<int>(text.size());
  const float left_x = position.getX() - static_cast<float>(length / 2) - 1;
  result += display_manager.drawCh(Vector(left_x, position.getY()), '|', color);
  result += display_manager.drawCh(Vector(left_x + static_cast<float>(length) + 1, position.getY()),
                                   '|', color);
  return result;
}

std::string ViewObject::serialize(std::string attr) {
  std::string text = Object::serialize(attr);
  for (int i = 0; i < VIEW_ATTRIBUTE_COUNT; i++) {
    if (!groupSelected(attr, VIEW_GROUP_NAMES[i], view_modified[i])) continue;
    text += serializeViewAttribute(i);
    view_modified[i] = false;
  }
  return text;
}

std::string ViewObject::serializeViewAttribute(int attribute) const {
  switch (attribute) {
    case VIEW_STRING:
      return "view_string:" + view_string + ",";
    case VIEW_VALUE:
      return "view_value:" + toString(value) + ",";
    case VIEW_BORDER:
      return "view_border:" + toString(border) + ",";
    case VIEW_COLOR:
      return "view_color:" + toString(static_cast<int>(color)) + ",";
    case VIEW_LOCATION:
      return "view_location:" + toString(location) + ",";
    default:
      return "view_draw_value:" + toString(draw_value) + ",";
  }
}

int ViewObject::deserialize(std::string str) {
  Object::deserialize(str);
  if (!READER.parse(str)) return 0;
  std::string new_view_string;
  if (READER.readText("view_string", new_view_string)) setViewString(new_view_string);
  int number = 0;
  if (READER.readInt("view_value", number, "value")) setValue(number);
  bool flag = false;
  if (READER.readFlag("view_border", flag, "border")) setBorder(flag);
  deserializeColor();
  deserializeLocation();
  if (READER.readFlag("view_draw_value", flag, "draw_value")) setDrawValue(flag);
  return 0;
}

void ViewObject::deserializeColor() {
  const std::string text = READER.checkedText("view_color", ValueKind::INT);
  Color new_color = WHITE;
  if (text.empty() || !readColor(text, new_color)) return;
  LogManager::getInstance().writeLog(20, "ViewObject::deserialize(): color is %d",
                                     static_cast<int>(new_color));
  setColor(new_color);
}

void ViewObject::deserializeLocation() {
  const std::string text = READER.checkedText("view_location", ValueKind::INT);
  // -1 stands for a position set directly, which the Object entries carry.
  const int new_location = readInt(text);
  if (text.empty() || new_location == -1) return;
  LogManager::getInstance().writeLog(20, "ViewObject::deserialize(): location is %d", new_location);
  setLocation(new_location);
}

bool ViewObject::isModified() const {
  bool any = Object::isModified();
  for (int i = 0; i < VIEW_ATTRIBUTE_COUNT; i++) {
    LogManager::getInstance().writeLog(10, "ViewObject::isModified(): %d is %s", i,
                                       toString(view_modified[i]).c_str());
    any = any || view_modified[i];
  }
  return any;
}

}  // namespace vt
