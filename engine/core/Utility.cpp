#include "core/Utility.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sstream>

#include "core/LogManager.h"

namespace vt {

bool valueInRange(float value, float min, float max) {
  return min <= value && value <= max;
}

bool boxContainsPosition(const Box& box, const Vector& position) {
  const Vector corner = box.getCorner();
  return valueInRange(position.getX(), corner.getX(), corner.getX() + box.getHorizontal()) &&
         valueInRange(position.getY(), corner.getY(), corner.getY() + box.getVertical());
}

bool boxContainsBox(const Box& outer, const Box& inner) {
  const Vector far_corner = inner.getCorner() + Vector(inner.getHorizontal(), inner.getVertical());
  return boxContainsPosition(outer, inner.getCorner()) && boxContainsPosition(outer, far_corner);
}

bool boxIntersectsBox(const Box& a, const Box& b) {
  const float ax = a.getCorner().getX();
  const float ay = a.getCorner().getY();
  const float bx = b.getCorner().getX();
  const float by = b.getCorner().getY();
  const bool x_overlap =
      valueInRange(ax, bx, bx + b.getHorizontal()) || valueInRange(bx, ax, ax + a.getHorizontal());
  const bool y_overlap =
      valueInRange(ay, by, by + b.getVertical()) || valueInRange(by, ay, ay + a.getVertical());
  return x_overlap && y_overlap;
}

bool boxIntersectsCircle(const Box& box, const Circle& circle) {
  // The point of the box nearest the centre decides. A negative extent
  // reaches back from the corner.
  const Vector corner = box.getCorner();
  const Vector far_corner = corner + Vector(box.getHorizontal(), box.getVertical());
  const Vector center = circle.getCenter();
  const float nearest_x = std::clamp(center.getX(), std::min(corner.getX(), far_corner.getX()),
                                     std::max(corner.getX(), far_corner.getX()));
  const float nearest_y = std::clamp(center.getY(), std::min(corner.getY(), far_corner.getY()),
                                     std::max(corner.getY(), far_corner.getY()));
  const float dx = center.getX() - nearest_x;
  const float dy = center.getY() - nearest_y;
  return dx * dx + dy * dy <= circle.getRadius() * circle.getRadius();
}

bool boxIntersectsLine(const Box& box, const Line& line) {
  // Clips the segment's parameter range [0,1] against both slabs of the box.
  const Vector start = line.getP1();
  const Vector travel = line.getP2() - start;
  const Vector corner = box.getCorner();
  const float mins[2] = {corner.getX(), corner.getY()};
  const float maxs[2] = {corner.getX() + box.getHorizontal(), corner.getY() + box.getVertical()};
  const float starts[2] = {start.getX(), start.getY()};
  const float travels[2] = {travel.getX(), travel.getY()};
  float t_enter = 0.0f;
  float t_leave = 1.0f;
  for (int axis = 0; axis < 2; axis++) {
    if (travels[axis] == 0.0f) {
      if (!valueInRange(starts[axis], mins[axis], maxs[axis])) return false;
      continue;
    }
    float t1 = (mins[axis] - starts[axis]) / travels[axis];
    float t2 = (maxs[axis] - starts[axis]) / travels[axis];
    if (t1 > t2) std::swap(t1, t2);
    t_enter = std::max(t_enter, t1);
    t_leave = std::min(t_leave, t2);
    if (t_enter > t_leave) return false;
  }
  return true;
}

Vector cellOf(Vector where) {
  return Vector(std::floor(where.getX() + 0.5f), std::floor(where.getY() + 0.5f));
}

Box shrinkBox(const Box& box, float margin) {
  return Box(box.getCorner() + Vector(margin, margin), box.getHorizontal() - 2 * margin,
             box.getVertical() - 2 * margin);
}

std::string toString(float value) {
  std::ostringstream stream;
  stream << value;
  return stream.str();
}

std::string toString(int value) {
  return std::to_string(value);
}

std::string toString(bool value) {
  return value ? "true" : "false";
}

int readInt(const std::string& text) {
  const long long number = std::strtoll(text.c_str(), nullptr, 10);
  return static_cast<int>(std::clamp<long long>(number, INT_MIN, INT_MAX));
}

float readFloat(const std::string& text) {
  const double number = std::strtod(text.c_str(), nullptr);
  if (std::isnan(number)) return 0.0f;
  return static_cast<float>(std::clamp<double>(number, -FLT_MAX, FLT_MAX));
}

bool readBool(const std::string& text) {
  return text == "true";
}

namespace {

ReadFault numberFault(const std::string& text, ValueKind kind) {
  const char* p_start = text.c_str();
  char* p_end = nullptr;
  if (kind == ValueKind::INT) {
    const long long number = std::strtoll(p_start, &p_end, 10);
    if (p_end == p_start) return ReadFault::NOT_READ;
    return number < INT_MIN || number > INT_MAX ? ReadFault::CLAMPED : ReadFault::NONE;
  }
  const double number = std::strtod(p_start, &p_end);
  if (p_end == p_start || std::isnan(number)) return ReadFault::NOT_READ;
  return std::fabs(number) > FLT_MAX ? ReadFault::CLAMPED : ReadFault::NONE;
}

}  // namespace

ReadFault readFault(const std::string& text, ValueKind kind) {
  if (kind != ValueKind::FLAG) return numberFault(text, kind);
  return text == "true" || text == "false" ? ReadFault::NONE : ReadFault::NOT_READ;
}

const char* describeReadFault(ReadFault fault, ValueKind kind) {
  if (fault == ReadFault::NONE) return "";
  if (kind == ValueKind::FLAG) return "neither true nor false";
  if (fault == ReadFault::NOT_READ) return "not a number";
  return kind == ValueKind::INT ? "beyond the range of a whole number"
                                : "beyond the range of a number";
}

void checkSavedValue(const char* caller, const std::string& key, const std::string& text,
                     ValueKind kind) {
  const ReadFault fault = readFault(text, kind);
  if (fault == ReadFault::NONE) return;
  const char* outcome = fault == ReadFault::CLAMPED ? "clamped to that range"
                        : kind == ValueKind::FLAG   ? "read as false"
                                                    : "read as 0";
  LogManager::getInstance().writeLog(0, "%s: Warning! '%s:%s' is %s; %s.", caller, key.c_str(),
                                     text.c_str(), describeReadFault(fault, kind), outcome);
}

bool readColor(const std::string& text, Color& value) {
  const int number = readInt(text);
  if (number < BLACK || number > CUSTOM) return false;
  value = static_cast<Color>(number);
  return true;
}

bool groupSelected(const std::string& attr, const std::string& group_name, bool modified) {
  if (attr == "ALL") return true;
  if (attr.empty()) return modified;
  return attr.find(group_name) != std::string::npos;
}

const char* getTimeString() {
  static char time_text[32];
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (now == static_cast<std::time_t>(-1) || localtime_r(&now, &local) == nullptr) {
    std::snprintf(time_text, sizeof(time_text), "(time error)");
  } else {
    std::snprintf(time_text, sizeof(time_text), "%02d:%02d:%02d", local.tm_hour, local.tm_min,
                  local.tm_sec);
  }
  return time_text;
}

}  // namespace vt
