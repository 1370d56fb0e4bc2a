#include "media/SpriteLoader.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>

#include "core/LogManager.h"

namespace vt {

namespace {

const char* const COLOR_NAMES[] = {"black", "red",     "green", "yellow",
                                   "blue",  "magenta", "cyan",  "white"};

LogManager& logManager() {
  return LogManager::getInstance();
}

// BLACK to WHITE for the eight colour names, -1 for anything else.
int colorFromName(const std::string& name) {
  for (int color = BLACK; color <= WHITE; color++) {
    if (name == COLOR_NAMES[color]) return color;
  }
  return -1;
}

// Removes every line that starts with the tag and returns the text after
// the tag and its separator in the last of them; warns about each repeat.
std::string matchValue(std::list<std::string>& lines, const std::string& tag,
                       const char* repeat_warning, bool& found) {
  found = false;
  std::string value;
  for (auto line = lines.begin(); line != lines.end();) {
    if (line->compare(0, tag.size(), tag) != 0) {
      ++line;
      continue;
    }
    if (found) logManager().writeLog(1, repeat_warning, line->c_str());
    value = line->size() > tag.size() ? line->substr(tag.size() + 1) : "";
    found = true;
    line = lines.erase(line);
  }
  return value;
}

// A sprite of that size, slowdown and transparency with room for capacity
// frames; null (after logging) when it cannot be made.
std::unique_ptr<Sprite> createSprite(int width, int height, int slowdown, char transparency,
                                     long long capacity, const char* failure) {
  std::unique_ptr<Sprite> p_sprite(new (std::nothrow) Sprite(static_cast<int>(capacity)));
  if (!p_sprite) {
    logManager().writeLog("%s", failure);
    return nullptr;
  }
  p_sprite->setWidth(width);
  p_sprite->setHeight(height);
  p_sprite->setSlowdown(slowdown);
  p_sprite->setTransparency(transparency);
  return p_sprite;
}

void logSummary(int frames, int width, int height, int slowdown) {
  LogManager& log_manager = logManager();
  log_manager.writeLog(5, "\t      Frames: %d", frames);
  log_manager.writeLog(5, "\t       Width: %d", width);
  log_manager.writeLog(5, "\t      Height: %d", height);
  log_manager.writeLog(5, "\t    Slowdown: %d", slowdown);
}

void logUnused(const std::list<std::string>& lines, const char* warning) {
  if (lines.empty()) return;
  logManager().writeLog(1, "%s", warning);
  for (const std::string& line : lines) logManager().writeLog(1, "\t'%s'", line.c_str());
}

// Colours the sprite by name, "default" meaning white; false (after
// logging) for any other name.
bool setRobustColor(Sprite& sprite, const std::string& name) {
  const int color = name == "default" ? WHITE : colorFromName(name);
  if (color < 0) {
    logManager().writeLog("RM::loadRobustSprite(): Error! Unrecognized color '%s'.", name.c_str());
    return false;
  }
  sprite.setColor(static_cast<Color>(color));
  logManager().writeLog(5, "\t       Color: %s", name.c_str());
  return true;
}

void warnMissing(const char* tag) {
  logManager().writeLog(5, "RM::loadRobustSprite(): Warning! No '%s' in header.", tag);
}

}  // namespace

int SpriteLoader::toInt(const std::string& text) {
  const long long value = std::strtoll(text.c_str(), nullptr, 10);
  return static_cast<int>(std::clamp<long long>(value, INT_MIN, INT_MAX));
}

std::unique_ptr<Sprite> SpriteLoader::load() {
  const std::string first_line = reader.getLine(false);
  reader.rewind();
  if (first_line == "<HEADER>") {
    logManager().writeLog(1, "RM::loadSprite(): assuming robust sprite file format.");
    return loadRobustSprite();
  }
  if (toInt(first_line) < 1) {
    logManager().writeLog("RM::loadSprite(): Error! Unknown sprite file format.");
    logManager().writeLog("RM::loadSprite(): First line is '%s'.", first_line.c_str());
    return nullptr;
  }
  logManager().writeLog(1, "RM::loadSprite(): assuming simple sprite file format.");
  return loadSimpleSprite();
}

// The bare format.

std::unique_ptr<Sprite> SpriteLoader::loadSimpleSprite() {
  Header header;
  if (!readSimpleHeader(header)) return nullptr;
  logSummary(header.frames, header.width, header.height, header.slowdown);
  logManager().writeLog(5, "\t       Color: %s", header.color.c_str());
  // Every frame takes at least width x height bytes: a file too short for
  // the frame count it claims gets no more room than it could fill.
  const long long frame_bytes = static_cast<long long>(header.width) * header.height;
  const long long capacity =
      std::min<long long>(header.frames, reader.remainingBytes() / frame_bytes);
  std::unique_ptr<Sprite> p_sprite =
      createSprite(header.width, header.height, header.slowdown, 0, capacity,
                   "RM::loadSimpleSprite(): Error! Unable to create Sprite.");
  if (!p_sprite) return nullptr;
  p_sprite->setColor(static_cast<Color>(colorFromName(header.color)));
  for (int frame_number = 0; frame_number < header.frames; frame_number++) {
    if (!readSimpleFrame(*p_sprite, header, frame_number)) return nullptr;
  }
  if (!checkSimpleEnd()) return nullptr;
  return p_sprite;
}

bool SpriteLoader::readSimpleHeader(Header& header) {
  const std::string frames = readSimpleHeaderLine("frames (an integer)");
  if (frames.empty()) return false;
  header.frames = toInt(frames);
  if (header.frames < 1) {
    logManager().writeLog("RM::loadSimpleSprite(): Error line %d! Number of frames is %d.",
                          reader.getLineNumber(), header.frames);
    return false;
  }
  return readSimpleHeaderInt("width (an integer)", "Width", 1, header.width) &&
         readSimpleHeaderInt("height (an integer)", "Height", 1, header.height) &&
         readSimpleHeaderInt("slowdown (an integer)", "Slowdown", 0, header.slowdown) &&
         readSimpleColor(header);
}

std::string SpriteLoader::readSimpleHeaderLine(const char* missing) {
  const std::string line = reader.getLine(true);
  if (line.empty()) {
    logManager().writeLog("RM::loadSimpleSprite(): Error! Unexpected end of file.");
    logManager().writeLog("\tMissing %s.", missing);
  }
  return line;
}

bool SpriteLoader::readSimpleHeaderInt(const char* missing, const char* name, int minimum,
                                       int& value) {
  const std::string line = readSimpleHeaderLine(missing);
  if (line.empty()) return false;
  value = toInt(line);
  if (value >= minimum) return true;
  logManager().writeLog("RM::loadSimpleSprite(): Error line %d! %s is '%s'.",
                        reader.getLineNumber(), name, line.c_str());
  return false;
}

bool SpriteLoader::readSimpleColor(Header& header) {
  header.color = readSimpleHeaderLine("color (a string)");
  if (header.color.empty()) return false;
  if (colorFromName(header.color) >= 0) return true;
  LogManager& log_manager = logManager();
  log_manager.writeLog("RM::loadSimpleSprite(): Error line %d! Unrecognized color '%s'.",
                       reader.getLineNumber(), header.color.c_str());
  log_manager.writeLog("  Valid colors are: black, red, green, yellow,");
  log_manager.writeLog("                    blue, magenta, cyan and white.");
  return false;
}

bool SpriteLoader::readSimpleFrame(Sprite& sprite, const Header& header, int frame_number) {
  LogManager& log_manager = logManager();
  log_manager.writeLog(15, "RM::loadSimpleSprite(): Reading frame %d.", frame_number);
  std::string frame_str;
  for (int row = 0; row < header.height; row++) {
    const std::string line = reader.getLine(true);
    if (line.empty()) {
      log_manager.writeLog("RM::loadSimpleSprite(): Error! Unexpected end of file.");
      log_manager.writeLog("\tReading frame %d of %d, row %d of %d.", frame_number + 1,
                           header.frames, row + 1, header.height);
      return false;
    }
    if (line.size() != static_cast<std::size_t>(header.width)) {
      log_manager.writeLog("RM::loadSimpleSprite(): Error line %d!", reader.getLineNumber());
      log_manager.writeLog("\tWidth is %d, expected %d.", static_cast<int>(line.size()),
                           header.width);
      return false;
    }
    frame_str += line;
  }
  if (sprite.addFrame(Frame(header.width, header.height, frame_str)) == 0) return true;
  log_manager.writeLog("RM::loadSimpleSprite(): Error! Cannot add Frame.");
  log_manager.writeLog("\tFramecount is %d, max is %d.", sprite.getFrameCount() + 1,
                       sprite.getMaxFrameCount());
  return false;
}

bool SpriteLoader::checkSimpleEnd() {
  std::string line;
  reader.readRawLine(line);
  reader.countLine();
  if (reader.atEnd() && line.empty()) return true;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  logManager().writeLog("RM::loadSimpleSprite(): Error line %d!", reader.getLineNumber());
  logManager().writeLog("\tExtra file data: '%s'", line.c_str());
  return false;
}

// The sectioned format.

std::unique_ptr<Sprite> SpriteLoader::loadRobustSprite() {
  Header header;
  if (!readRobustHeader(header)) return nullptr;
  std::list<std::string> body = readData("BODY");
  if (body.empty()) return nullptr;
  // Every frame takes height rows and an "end" line of the body: a body too
  // short for the frame count claimed gets no more room than it could fill.
  const long long frame_lines = std::max(header.height, 0) + 1LL;
  const long long capacity =
      std::min<long long>(header.frames, static_cast<long long>(body.size()) / frame_lines);
  std::unique_ptr<Sprite> p_sprite =
      createSprite(header.width, header.height, header.slowdown, header.transparency, capacity,
                   "RM::loadRobustSprite(): Error! Unable to create Sprite.");
  if (!p_sprite || !setRobustColor(*p_sprite, header.color)) return nullptr;
  if (!readRobustFrames(*p_sprite, body, header.frames) || !checkRobustFooter()) return nullptr;
  return p_sprite;
}

bool SpriteLoader::readRobustHeader(Header& header) {
  std::list<std::string> lines = readData("HEADER");
  if (lines.empty()) return false;
  if (!matchRequired(lines, "frames", header.frames) ||
      !matchRequired(lines, "width", header.width) ||
      !matchRequired(lines, "height", header.height)) {
    return false;
  }
  matchOptional(lines, header);
  logUnused(lines, "RM::loadRobustSprite(): Warning! Unused HEADER lines:");
  logSummary(header.frames, header.width, header.height, header.slowdown);
  if (header.transparency == 0) {
    logManager().writeLog(5, "\tTransparency: (none)");
  } else {
    logManager().writeLog(5, "\tTransparency: %c", header.transparency);
  }
  return true;
}

bool SpriteLoader::matchRequired(std::list<std::string>& lines, const char* tag, int& value) {
  value = matchLineInt(lines, tag);
  if (value != -1) return true;
  logManager().writeLog("RM::loadRobustSprite(): Error! Missing '%s' in header.", tag);
  return false;
}

void SpriteLoader::matchOptional(std::list<std::string>& lines, Header& header) {
  header.color = matchLineStr(lines, "color");
  if (header.color.empty()) {
    warnMissing("color");
    header.color = "default";
  }
  const std::string transparency = matchLineStr(lines, "transparency");
  if (transparency.empty()) {
    warnMissing("transparency");
  } else {
    header.transparency = transparency[0];
  }
  header.slowdown = matchLineInt(lines, "slowdown");
  if (header.slowdown == -1) {
    warnMissing("slowdown");
    header.slowdown = 0;
  }
}

bool SpriteLoader::readRobustFrames(Sprite& sprite, std::list<std::string>& body, int frames) {
  LogManager& log_manager = logManager();
  for (int frame_number = 0; frame_number < frames; frame_number++) {
    const Frame frame = readFrame(body, sprite.getWidth(), sprite.getHeight());
    if (frame.getString().empty()) {
      log_manager.writeLog("RM::loadRobustSprite(): Error! No frame data to add.");
      return false;
    }
    if (sprite.addFrame(frame) != 0) {
      log_manager.writeLog("RM::loadRobustSprite(): Error! Cannot add Frame.");
      log_manager.writeLog("\tFramecount is %d, max is %d", sprite.getFrameCount() + 1,
                           sprite.getMaxFrameCount());
      return false;
    }
  }
  if (body.empty()) return true;
  log_manager.writeLog("RM::loadRobustSprite(): Error! Extra BODY:");
  while (!body.empty()) {
    const std::string line = takeLine(body);
    log_manager.writeLog("\tline %d: %s", reader.getLineNumber(), line.c_str());
  }
  return false;
}

bool SpriteLoader::checkRobustFooter() {
  std::list<std::string> lines = readData("FOOTER");
  if (lines.empty()) return false;
  if (matchLineStr(lines, "version").empty()) {
    logManager().writeLog("RM::loadRobustSprite(): Error! Missing '%s' in FOOTER (line %d).",
                          "version", reader.getLineNumber());
    return false;
  }
  logUnused(lines, "RM::loadRobustSprite(): Warning! Unused FOOTER lines:");
  return true;
}

std::list<std::string> SpriteLoader::readData(const std::string& tag) {
  const std::string opening = "<" + tag + ">";
  const std::string closing = "</" + tag + ">";
  std::string line = reader.getLine(true);
  if (line != opening) {
    logManager().writeLog("readData(): Error line %d! Expected '%s', have '%s'.",
                          reader.getLineNumber(), opening.c_str(), line.c_str());
    return {};
  }
  std::list<std::string> lines;
  for (line = reader.getLine(false); line != closing && !line.empty();
       line = reader.getLine(true)) {
    lines.push_back(line);
  }
  if (line.empty()) {
    logManager().writeLog("readData(): Error! Never encountered '%s'.", closing.c_str());
    return {};
  }
  reader.countLine();
  return lines;
}

Frame SpriteLoader::readFrame(std::list<std::string>& lines, int width, int height) {
  LogManager& log_manager = logManager();
  std::string frame_str;
  for (int row = 0; row < height; row++) {
    if (lines.empty()) return noMoreFrameData();
    const std::string line = takeLine(lines);
    if (line.size() != static_cast<std::size_t>(width)) {
      log_manager.writeLog("\tError! Line %d: Line length is %d (frame width is %d).",
                           reader.getLineNumber(), static_cast<int>(line.size()), width);
      log_manager.writeLog("\tLine %d: '%s'", reader.getLineNumber(), line.c_str());
      return Frame();
    }
    frame_str += line;
  }
  if (lines.empty()) return noMoreFrameData();
  const std::string line = takeLine(lines);
  if (line != "end") {
    log_manager.writeLog("\tError! Line %d: Expected '%s'.", reader.getLineNumber(), "end");
    log_manager.writeLog("\tLine %d: '%s'", reader.getLineNumber(), line.c_str());
    return Frame();
  }
  return Frame(width, height, frame_str);
}

std::string SpriteLoader::takeLine(std::list<std::string>& lines) {
  std::string line = std::move(lines.front());
  lines.pop_front();
  reader.countLine();
  return line;
}

Frame SpriteLoader::noMoreFrameData() const {
  logManager().writeLog("\tError! Line %d: No more frame data before 'end'.",
                        reader.getLineNumber() + 1);
  return Frame();
}

int SpriteLoader::matchLineInt(std::list<std::string>& lines, const std::string& tag) {
  bool found = false;
  const std::string value =
      matchValue(lines, tag, "matchLineInt(): Warning! '%s' matches multiple lines.", found);
  return found ? toInt(value) : -1;
}

std::string SpriteLoader::matchLineStr(std::list<std::string>& lines, const std::string& tag) {
  bool found = false;
  return matchValue(lines, tag, "matchLineStr(): Warning! '%s' matches multiple lines.", found);
}

}  // namespace vt
