#pragma once

#include <string>

#include "core/Box.h"
#include "core/Circle.h"
#include "core/Line.h"
#include "core/Vector.h"

namespace vt {

class Object;

// True when min <= value <= max.
bool valueInRange(float value, float min, float max);

// Edges, far edges included, are inside.
bool boxContainsPosition(const Box& box, const Vector& position);
bool boxContainsBox(const Box& outer, const Box& inner);
// Boxes that only share an edge or a corner intersect.
bool boxIntersectsBox(const Box& a, const Box& b);
// True when the box and the disc share at least one point.
bool boxIntersectsCircle(const Box& box, const Circle& circle);
// True when the segment touches or crosses the box.
bool boxIntersectsLine(const Box& box, const Line& line);

// The object's box translated to its position, or to where.
Box getWorldBox(const Object* p_object);
Box getWorldBox(const Object* p_object, const Vector& where);

// The float as a standard stream writes it by default ("1", "-0.5", "3.25").
std::string toString(float value);
std::string toString(int value);
std::string toString(bool value);

// Local time of day "hh:mm:ss", or "(time error)". The text lives in one
// static buffer that each call overwrites.
const char* getTimeString();

}  // namespace vt
