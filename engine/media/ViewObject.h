#pragma once

#include <string>

#include "core/Color.h"
#include "world/Object.h"

namespace vt {

// Fixed places on the screen for view objects.
enum ViewObjectLocation {
  TOP_LEFT = 0,
  TOP_CENTER,
  TOP_RIGHT,
  CENTER_LEFT,
  CENTER_CENTER,
  CENTER_RIGHT,
  BOTTOM_LEFT,
  BOTTOM_CENTER,
  BOTTOM_RIGHT,
};

// A heads-up display item: a label and a value at a place on the screen,
// optionally framed, changed by "vt-view" events tagged with its label.
class ViewObject : public Object {
 public:
  ViewObject();

  // Moving the object by hand forgets its screen location.
  int setPosition(Vector new_position) override;
  int eventHandler(const Event* p_event) override;
  int draw() override;
  // Object's entries, then the view's own: "view_string", "view_value",
  // "view_border", "view_color", "view_location" and "view_draw_value",
  // chosen alike by "ALL", by their changed flags, or by the names
  // "STRING,", "VALUE,", "BORDER,", "COLOR,", "LOCATION," and "DRAW_VALUE,".
  std::string serialize(std::string attr = "") override;
  int deserialize(std::string str) override;
  // True when an Object group or a view attribute changed.
  bool isModified() const override;
  using Object::isModified;

  void setLocation(int new_location);
  int getLocation() const { return location; }
  void setValue(int new_value);
  int getValue() const { return value; }
  void setBorder(bool new_border);
  bool getBorder() const { return border; }
  void setColor(Color new_color);
  Color getColor() const { return color; }
  void setViewString(std::string new_view_string);
  std::string getViewString() const { return view_string; }
  void setDrawValue(bool new_draw_value = true);
  bool getDrawValue() const { return draw_value; }

 protected:
  enum ViewAttribute {
    VIEW_STRING = 0,
    VIEW_VALUE,
    VIEW_BORDER,
    VIEW_COLOR,
    VIEW_LOCATION,
    VIEW_DRAW_VALUE,
    VIEW_ATTRIBUTE_COUNT,
  };
  bool view_modified[VIEW_ATTRIBUTE_COUNT];

 private:
  // The text drawn in the middle of the object.
  std::string displayText() const;
  std::string serializeViewAttribute(int attribute) const;
  void deserializeColor();
  void deserializeLocation();

  std::string view_string;
  int value = 0;
  Color color = WHITE;
  int location = TOP_CENTER;
  bool draw_value = true;
  bool border = true;
};

}  // namespace vt
