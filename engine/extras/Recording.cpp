#include "extras/Recording.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "media/EventKeyboard.h"
#include "media/EventMouse.h"

namespace vt {

namespace {

const char* const MAGIC = "vantor-recording";
const int FORMAT_VERSION = 1;

// The names of the engine's keys in a recording, in key-code order.
const std::vector<std::string>& keyNames() {
  static const std::vector<std::string> names = [] {
    std::istringstream words(
        "SPACE RETURN ESCAPE TAB LEFTARROW RIGHTARROW UPARROW DOWNARROW PAUSE MINUS PLUS TILDE "
        "PERIOD COMMA SLASH EQUAL BACKSLASH MULTIPLY QUOTE SEMICOLON LEFTCONTROL RIGHTCONTROL "
        "LEFTSHIFT RIGHTSHIFT F1 F2 F3 F4 F5 F6 F7 F8 F9 F10 F11 F12 A B C D E F G H I J K L M N O "
        "P Q R S T U V W X Y Z NUM1 NUM2 NUM3 NUM4 NUM5 NUM6 NUM7 NUM8 NUM9 NUM0 BACKSPACE");
    std::vector<std::string> read;
    std::string word;
    while (words >> word) read.push_back(word);
    return read;
  }();
  return names;
}

const std::vector<std::string> BUTTON_NAMES = {"left", "right", "middle"};

struct ActionName {
  InputRecord::Kind kind;
  int action;
  const char* name;
};

const ActionName ACTION_NAMES[] = {
    {InputRecord::KEY, KEY_PRESSED, "press"}, {InputRecord::KEY, KEY_RELEASED, "release"},
    {InputRecord::KEY, KEY_DOWN, "down"},     {InputRecord::MOUSE, CLICKED, "click"},
    {InputRecord::MOUSE, PRESSED, "hold"},    {InputRecord::MOUSE, MOVED, "move"},
};

// A whole decimal integer, nothing before or after it.
bool readWholeInt(const std::string& text, long long min, long long max, long long& value) {
  if (text.empty() || text.size() > 20) return false;
  errno = 0;
  char* p_end = nullptr;
  const long long read = std::strtoll(text.c_str(), &p_end, 10);
  if (errno != 0 || *p_end != '\0' || read < min || read > max) return false;
  value = read;
  return true;
}

bool readWholeInt(const std::string& text, int min, int max, int& value) {
  long long wide = 0;
  if (!readWholeInt(text, static_cast<long long>(min), static_cast<long long>(max), wide)) {
    return false;
  }
  value = static_cast<int>(wide);
  return true;
}

bool readFiniteFloat(const std::string& text, float& value) {
  if (text.empty()) return false;
  errno = 0;
  char* p_end = nullptr;
  const float read = std::strtof(text.c_str(), &p_end);
  if (errno != 0 || *p_end != '\0' || !std::isfinite(read)) return false;
  value = read;
  return true;
}

// A name from the list, or a plain number for what has no name.
std::string codeName(int code, const std::vector<std::string>& names) {
  if (code >= 0 && code < static_cast<int>(names.size()))
    return names[static_cast<std::size_t>(code)];
  return std::to_string(code);
}

bool readCode(const std::string& text, const std::vector<std::string>& names, int& code) {
  const auto found = std::find(names.begin(), names.end(), text);
  if (found != names.end()) {
    code = static_cast<int>(found - names.begin());
    return true;
  }
  return readWholeInt(text, INT_MIN, INT_MAX, code);
}

std::string formatFloat(float value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.9g", static_cast<double>(value));
  return text;
}

std::string formatInput(const InputRecord& input) {
  if (input.kind == InputRecord::CLOSE) return "close";
  std::string name = "?";
  for (const ActionName& entry : ACTION_NAMES) {
    if (entry.kind == input.kind && entry.action == input.action) name = entry.name;
  }
  if (input.kind == InputRecord::KEY) {
    return name + ":" + codeName(input.code, keyNames());
  }
  const std::string where =
      "@" + formatFloat(input.position.getX()) + "," + formatFloat(input.position.getY());
  if (input.action == MOVED && input.code == Mouse::UNDEFINED_MOUSE_BUTTON) return name + where;
  return name + ":" + codeName(input.code, BUTTON_NAMES) + where;
}

bool readPosition(const std::string& text, Vector& position) {
  const std::size_t comma = text.find(',');
  float x = 0;
  float y = 0;
  if (comma == std::string::npos || !readFiniteFloat(text.substr(0, comma), x) ||
      !readFiniteFloat(text.substr(comma + 1), y)) {
    return false;
  }
  position = Vector(x, y);
  return true;
}

// A key or mouse token: ACTION:CODE, or for the mouse ACTION[:BUTTON]@X,Y.
bool readInput(const std::string& token, InputRecord& input) {
  if (token == "close") {
    input = InputRecord();
    return true;
  }
  const std::size_t at = token.find('@');
  const std::string head = token.substr(0, at);
  const std::size_t colon = head.find(':');
  const std::string name = head.substr(0, colon);
  for (const ActionName& entry : ACTION_NAMES) {
    if (name != entry.name) continue;
    input.kind = entry.kind;
    input.action = entry.action;
    input.code = Mouse::UNDEFINED_MOUSE_BUTTON;
    if (entry.kind == InputRecord::KEY) {
      return at == std::string::npos && colon != std::string::npos &&
             readCode(head.substr(colon + 1), keyNames(), input.code);
    }
    if (at == std::string::npos || !readPosition(token.substr(at + 1), input.position)) {
      return false;
    }
    return colon == std::string::npos || readCode(head.substr(colon + 1), BUTTON_NAMES, input.code);
  }
  return false;
}

bool readWorld(const std::string& text, StepRecord& record) {
  const std::size_t slash = text.find('/');
  if (slash == std::string::npos || slash == 0 || slash > 16) return false;
  const std::string hex = text.substr(0, slash);
  if (hex.find_first_not_of("0123456789abcdef") != std::string::npos) return false;
  record.world_hash = std::strtoull(hex.c_str(), nullptr, 16);
  record.has_world = true;
  return readWholeInt(text.substr(slash + 1), 0, INT_MAX, record.world_objects);
}

// One token of a step line into the record; false when it is not one.
bool readToken(const std::string& token, StepRecord& record) {
  if (token.rfind("paths:", 0) == 0) {
    return readWholeInt(token.substr(6), 1, INT_MAX, record.path_calls);
  }
  if (token.rfind("world:", 0) == 0) return readWorld(token.substr(6), record);
  InputRecord input;
  if (!readInput(token, input)) return false;
  record.inputs.push_back(input);
  return true;
}

bool readSteps(const std::string& text, RecordingRun& run) {
  const std::size_t dash = text.find('-');
  if (dash == std::string::npos) {
    if (!readWholeInt(text, 0, INT_MAX, run.first)) return false;
    run.last = run.first;
    return true;
  }
  return readWholeInt(text.substr(0, dash), 0, INT_MAX, run.first) &&
         readWholeInt(text.substr(dash + 1), 0, INT_MAX, run.last) && run.first <= run.last;
}

std::string lineError(int line_number, const std::string& what) {
  return "line " + std::to_string(line_number) + ": " + what;
}

// Reads "key value" with the expected key.
bool readHeaderLine(std::istream& in, const char* key, std::string& value, int& line_number) {
  std::string line;
  if (!std::getline(in, line)) return false;
  line_number++;
  const std::string prefix = std::string(key) + " ";
  if (line.rfind(prefix, 0) != 0) return false;
  value = line.substr(prefix.size());
  return true;
}

std::string readHeader(std::istream& in, RecordingHeader& header, int& line_number) {
  std::string line;
  if (!std::getline(in, line)) return "empty recording";
  line_number = 1;
  const std::string magic_prefix = std::string(MAGIC) + " ";
  if (line.rfind(magic_prefix, 0) != 0) return "not a recording (no 'vantor-recording' line)";
  int version = 0;
  if (!readWholeInt(line.substr(magic_prefix.size()), 0, INT_MAX, version) ||
      version != FORMAT_VERSION) {
    return "version '" + line.substr(magic_prefix.size()) +
           "' is not supported (this engine reads " + std::to_string(FORMAT_VERSION) + ")";
  }
  std::string frame_time;
  std::string grid;
  std::string seed;
  std::string hash_every;
  if (!readHeaderLine(in, "engine", header.engine_version, line_number) ||
      !readHeaderLine(in, "frame_time", frame_time, line_number) ||
      !readWholeInt(frame_time, INT_MIN, INT_MAX, header.frame_time) ||
      !readHeaderLine(in, "grid", grid, line_number)) {
    return lineError(line_number, "the header is incomplete or garbled");
  }
  const std::size_t blank = grid.find(' ');
  if (blank == std::string::npos ||
      !readWholeInt(grid.substr(0, blank), 1, INT_MAX, header.columns) ||
      !readWholeInt(grid.substr(blank + 1), 1, INT_MAX, header.rows) ||
      !readHeaderLine(in, "seed", seed, line_number) ||
      !readWholeInt(seed, -1LL, 0xFFFFFFFFLL, header.seed) ||
      !readHeaderLine(in, "hash_every", hash_every, line_number) ||
      !readWholeInt(hash_every, 0, INT_MAX, header.hash_every)) {
    return lineError(line_number, "the header is incomplete or garbled");
  }
  return "";
}

}  // namespace

std::string Recording::read(std::istream& in) {
  RecordingHeader new_header;
  int line_number = 0;
  const std::string header_error = readHeader(in, new_header, line_number);
  if (!header_error.empty()) return header_error;
  std::vector<RecordingRun> new_runs;
  std::string line;
  int next_step = 0;
  while (std::getline(in, line)) {
    line_number++;
    std::istringstream words(line);
    std::string steps;
    words >> steps;
    if (steps == "end") {
      int new_end = 0;
      std::string rest;
      if (!(words >> rest) || !readWholeInt(rest, next_step, INT_MAX, new_end) || (words >> rest)) {
        return lineError(line_number, "a bad end line");
      }
      if (std::getline(in, line)) return lineError(line_number + 1, "text after the end line");
      header = new_header;
      runs = std::move(new_runs);
      end_step = new_end;
      return "";
    }
    RecordingRun run;
    if (!readSteps(steps, run)) return lineError(line_number, "'" + steps + "' is not a step");
    if (run.first < next_step) return lineError(line_number, "steps out of order");
    std::string token;
    while (words >> token) {
      if (!readToken(token, run.record)) {
        return lineError(line_number, "unknown event '" + token + "'");
      }
    }
    if (run.record.isEmpty()) return lineError(line_number, "a step with nothing in it");
    if (run.last == INT_MAX) return lineError(line_number, "steps out of range");
    next_step = run.last + 1;
    new_runs.push_back(std::move(run));
  }
  return lineError(line_number, "the recording is cut short (no end line)");
}

std::string Recording::formatHeader(const RecordingHeader& header) {
  std::ostringstream text;
  text << MAGIC << " " << FORMAT_VERSION << "\nengine " << header.engine_version << "\nframe_time "
       << header.frame_time << "\ngrid " << header.columns << " " << header.rows << "\nseed "
       << header.seed << "\nhash_every " << header.hash_every << "\n";
  return text.str();
}

std::string Recording::formatRun(const RecordingRun& run) {
  std::string line = std::to_string(run.first);
  if (run.last != run.first) line += "-" + std::to_string(run.last);
  for (const InputRecord& input : run.record.inputs) line += " " + formatInput(input);
  if (run.record.path_calls > 0) line += " paths:" + std::to_string(run.record.path_calls);
  if (run.record.has_world) {
    char world[48];
    std::snprintf(world, sizeof(world), " world:%016" PRIx64 "/%d", run.record.world_hash,
                  run.record.world_objects);
    line += world;
  }
  return line + "\n";
}

std::string Recording::formatEnd(int end_step) {
  return "end " + std::to_string(end_step) + "\n";
}

}  // namespace vt
