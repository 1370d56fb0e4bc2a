#pragma once

#include <string>

#include "core/Utility.h"

namespace vt {

// Reads the values of a saved object's keys for a deserialize: each value
// read is logged at the trace level, 20, as "<caller>: <name> is <value>",
// where the name is the key unless another is given; a number or a flag
// that does not read as written is logged as a warning first.
class KeyReader {
 public:
  // The caller names the operation in the log lines ("Object::deserialize()").
  constexpr explicit KeyReader(const char* caller) : caller(caller) {}

  // Parses the text for the readers below; false, parsing nothing, when it
  // is empty, since match would then search the last text it parsed.
  bool parse(const std::string& text) const;

  // False, with value untouched, when the key has no value in the text
  // parsed last.
  bool readInt(const std::string& key, int& value, const std::string& name = "") const;
  bool readFloat(const std::string& key, float& value, const std::string& name = "") const;
  bool readFlag(const std::string& key, bool& value, const std::string& name = "") const;
  // The value as written, logged in quotes when quoted is true.
  bool readText(const std::string& key, std::string& value, bool quoted = false) const;

  // The key's value, checked as a value of its kind but not logged; "" when
  // the key has none.
  std::string checkedText(const std::string& key, ValueKind kind) const;
  const char* getCaller() const { return caller; }

 private:
  const char* caller;
};

}  // namespace vt
