#pragma once

#include <string>

#include "core/Box.h"
#include "core/Circle.h"
#include "core/Color.h"
#include "core/Line.h"
#include "core/Vector.h"

namespace vt {

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

// Cells are centred on whole coordinates: the cell of (3, 4) spans 2.5 to
// 3.5 across and 3.5 to 4.5 down, and a point on the edge between two cells
// belongs to the higher one, as on the screen. The centre of where's cell.
Vector cellOf(Vector where);
// How far a box that fits inside its cell keeps off the cell's edges, and
// how far an object's box must reach into a cell to count as in it.
const float CELL_MARGIN = 0.05f;
// The box less margin on every side, about the same centre.
Box shrinkBox(const Box& box, float margin);

// The float as a standard stream writes it by default ("1", "-0.5", "3.25").
std::string toString(float value);
std::string toString(int value);
std::string toString(bool value);

// Readers of numbers and flags in text (configuration, serialized objects,
// sprite files), as the C library's atoi and atof read them: leading blanks
// are skipped, the number at the start counts and the rest is ignored, so
// "12ms" reads as 12 and "abc" as 0. Values beyond the type's range are
// clamped to it; atof's "nan" reads as 0.
int readInt(const std::string& text);
float readFloat(const std::string& text);
// True exactly for "true".
bool readBool(const std::string& text);
// The kinds of value the readers above read.
enum class ValueKind { INT, FLOAT, FLAG };
// How a text falls short of reading, as written, as a value of its kind:
// not at all (no number at its start, or "nan": the reader gives 0; a flag
// neither "true" nor "false": the reader gives false), or as a number beyond
// the kind's range, which the reader clamps. Text after a number ("12ms") is
// no fault.
enum class ReadFault { NONE, NOT_READ, CLAMPED };
ReadFault readFault(const std::string& text, ValueKind kind);
// The fault in words, for a log line: "not a number", "beyond the range of
// a whole number", "neither true nor false"; "" for none.
const char* describeReadFault(ReadFault fault, ValueKind kind);
// Logs at level 0, under the caller's name, a "key:text" entry of a saved
// object whose text does not read as written as a value of its kind; the
// reader reads it all the same.
void checkSavedValue(const char* caller, const std::string& key, const std::string& text,
                     ValueKind kind);
// A colour number from BLACK to CUSTOM, read as readInt reads it (a colour's
// name reads as 0, BLACK); false, with value untouched, for other numbers.
bool readColor(const std::string& text, Color& value);

// Whether serialization writes a group of attributes: always for "ALL", for
// an empty attr when the group is modified, and otherwise when the group's
// name (with its trailing comma) occurs anywhere in attr.
bool groupSelected(const std::string& attr, const std::string& group_name, bool modified);

// Local time of day "hh:mm:ss", or "(time error)". The text lives in one
// static buffer that each call overwrites.
const char* getTimeString();

}  // namespace vt
