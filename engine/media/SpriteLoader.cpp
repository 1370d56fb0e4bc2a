#include "media/SpriteLoader.h"

#include "core/Utility.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>

#include "core/LogManager.h"
#include "core/Utility.h"

namespace vt {

namespace {

LogManager& logManager() {
  return LogManager::getInstance();
}

// BLACK to WHITE for the eight colour names, -1 for anything else.
int colorFromName(const std::string& name) {
  Color color = BLACK;
  return vt::colorFromName(name, color) ? color : -1;
}

// Removes every line that starts with the tag and returns the text after
// the tag and its separator in the last of them; warns about each repeat.
std::string matchValue(LineList& lines, const std::string& tag, const char* repeat_warning,
                       bool& found) {
  found = false;
  std::string value;
  lines.filter([&](const std::string& line) {
    if (line.compare(0, tag.size(), tag) != 0) return true;
    if (found) logManager().writeLog(1, repeat_warning, line.c_str());
    value = line.size() > tag.size() ? line.substr(tag.size() + 1) : "";
    found = true;
    return false;
  });
  return value;
}

// The messages of one format for a frame the sprite refuses.
struct AddFrameFailure {
  const char* error;
  const char* frame_count;
};

// A sprite of the header's size, slowdown and transparency holding the
// frames whose rows are joined in rows; null (after logging) when it cannot
// be made or refuses a frame.
std::unique_ptr<Sprite> createSprite(const SpriteHeader& header, Color color,
                                     const std::string& rows, const char* creation_failure,
                                     const AddFrameFailure& add_failure) {
  std::unique_ptr<Sprite> p_sprite(new (std::nothrow) Sprite(header.frames));
  if (!p_sprite) {
    logManager().writeLog("%s", creation_failure);
    return nullptr;
  }
  p_sprite->setWidth(header.width);
  p_sprite->setHeight(header.height);
  p_sprite->setSlowdown(header.slowdown);
  p_sprite->setTransparency(header.transparency);
  p_sprite->setColor(color);
  const std::size_t frame_size = rows.size() / static_cast<std::size_t>(std::max(header.frames, 1));
  for (std::size_t begin = 0; begin < rows.size(); begin += frame_size) {
    if (p_sprite->addFrame(Frame(header.width, header.height, rows.substr(begin, frame_size))) !=
        0) {
      logManager().writeLog("%s", add_failure.error);
      logManager().writeLog(add_failure.frame_count, p_sprite->getFrameCount() + 1,
                            p_sprite->getMaxFrameCount());
      return nullptr;
    }
  }
  return p_sprite;
}

void logSummary(int frames, int width, int height, int slowdown) {
  LogManager& log_manager = logManager();
  log_manager.writeLog(5, "\t      Frames: %d", frames);
  log_manager.writeLog(5, "\t       Width: %d", width);
  log_manager.writeLog(5, "\t      Height: %d", height);
  log_manager.writeLog(5, "\t    Slowdown: %d", slowdown);
}

void logUnused(const LineList& lines, const char* warning) {
  if (lines.empty()) return;
  logManager().writeLog(1, "%s", warning);
  lines.forEach([](const std::string& line) { logManager().writeLog(1, "\t'%s'", line.c_str()); });
}

// The colour of a sectioned file's name, "default" meaning white; -1 (after
// logging) for any other name.
int robustColor(const std::string& name) {
  const int color = name == "default" ? WHITE : colorFromName(name);
  if (color < 0) {
    logManager().writeLog("RM::loadRobustSprite(): Error! Unrecognized color '%s'.", name.c_str());
    return -1;
  }
  logManager().writeLog(5, "\t       Color: %s", name.c_str());
  return color;
}

void warnMissing(const char* tag) {
  logManager().writeLog(5, "RM::loadRobustSprite(): Warning! No '%s' in header.", tag);
}

}  // namespace

std::unique_ptr<Sprite> SpriteLoader::load() {
  const std::string first_line = reader.getLine(false);
  reader.rewind();
  if (first_line == "<HEADER>") {
    logManager().writeLog(1, "RM::loadSprite(): assuming robust sprite file format.");
    return loadRobustSprite();
  }
  if (readInt(first_line) < 1) {
    logManager().writeLog("RM::loadSprite(): Error! Unknown sprite file format.");
    logManager().writeLog("RM::loadSprite(): First line is '%s'.", first_line.c_str());
    return nullptr;
  }
  logManager().writeLog(1, "RM::loadSprite(): assuming simple sprite file format.");
  return loadSimpleSprite();
}

// The bare format.

// Frames are made only once the whole file has been read and checked: a
// file claiming more frames than it holds costs no more than its rows.
std::unique_ptr<Sprite> SpriteLoader::loadSimpleSprite() {
  SpriteHeader header;
  if (!readSimpleHeader(header)) return nullptr;
  logSummary(header.frames, header.width, header.height, header.slowdown);
  logManager().writeLog(5, "\t       Color: %s", header.color.c_str());
  std::string rows;
  for (int frame_number = 0; frame_number < header.frames; frame_number++) {
    if (!readSimpleFrame(rows, header, frame_number)) return nullptr;
  }
  if (!checkSimpleEnd()) return nullptr;
  return createSprite(
      header, static_cast<Color>(colorFromName(header.color)), rows,
      "RM::loadSimpleSprite(): Error! Unable to create Sprite.",
      {"RM::loadSimpleSprite(): Error! Cannot add Frame.", "\tFramecount is %d, max is %d."});
}

bool SpriteLoader::readSimpleHeader(SpriteHeader& header) {
  const std::string frames = readSimpleHeaderLine("frames (an integer)");
  if (frames.empty()) return false;
  header.frames = readInt(frames);
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
  value = readInt(line);
  if (value >= minimum) return true;
  logManager().writeLog("RM::loadSimpleSprite(): Error line %d! %s is '%s'.",
                        reader.getLineNumber(), name, line.c_str());
  return false;
}

bool SpriteLoader::readSimpleColor(SpriteHeader& header) {
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

bool SpriteLoader::readSimpleFrame(std::string& rows, const SpriteHeader& header,
                                   int frame_number) {
  LogManager& log_manager = logManager();
  log_manager.writeLog(15, "RM::loadSimpleSprite(): Reading frame %d.", frame_number);
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
    rows += line;
  }
  return true;
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

// As in the bare format, frames are made once the whole file checked out.
std::unique_ptr<Sprite> SpriteLoader::loadRobustSprite() {
  SpriteHeader header;
  if (!readRobustHeader(header)) return nullptr;
  LineList body = readData("BODY");
  if (body.empty()) return nullptr;
  const int color = robustColor(header.color);
  if (color < 0) return nullptr;
  std::string rows;
  if (!readRobustFrames(rows, body, header) || !checkRobustFooter()) return nullptr;
  return createSprite(
      header, static_cast<Color>(color), rows,
      "RM::loadRobustSprite(): Error! Unable to create Sprite.",
      {"RM::loadRobustSprite(): Error! Cannot add Frame.", "\tFramecount is %d, max is %d"});
}

bool SpriteLoader::readRobustHeader(SpriteHeader& header) {
  LineList lines = readData("HEADER");
  if (lines.empty()) return false;
  if (!matchRequired(lines, "frames", header.frames) ||
      !matchRequired(lines, "width", header.width) ||
      !matchRequired(lines, "height", header.height)) {
    return false;
  }
  matchOptional(lines, header);
  logUnused(lines, "RM::loadRobustSprite(): Warning! Unused HEADER lines:");
  // A misspelled name leaves its setting at the default: said at every level.
  lines.forEach([](const std::string& line) {
    logManager().writeLog(0,
                          "RM::loadRobustSprite(): Warning! Unknown HEADER line '%s'; the names "
                          "are frames, width, height, color, slowdown and transparency.",
                          line.c_str());
  });
  logSummary(header.frames, header.width, header.height, header.slowdown);
  if (header.transparency == 0) {
    logManager().writeLog(5, "\tTransparency: (none)");
  } else {
    logManager().writeLog(5, "\tTransparency: %c", header.transparency);
  }
  return true;
}

bool SpriteLoader::matchRequired(LineList& lines, const char* tag, int& value) {
  value = matchLineInt(lines, tag);
  if (value != -1) return true;
  logManager().writeLog("RM::loadRobustSprite(): Error! Missing '%s' in header.", tag);
  return false;
}

void SpriteLoader::matchOptional(LineList& lines, SpriteHeader& header) {
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

bool SpriteLoader::readRobustFrames(std::string& rows, LineList& body, const SpriteHeader& header) {
  LogManager& log_manager = logManager();
  for (int frame_number = 0; frame_number < header.frames; frame_number++) {
    const Frame frame = readFrame(body, header.width, header.height);
    if (frame.getString().empty()) {
      log_manager.writeLog("RM::loadRobustSprite(): Error! No frame data to add.");
      return false;
    }
    rows += frame.getString();
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
  LineList lines = readData("FOOTER");
  if (lines.empty()) return false;
  if (matchLineStr(lines, "version").empty()) {
    logManager().writeLog("RM::loadRobustSprite(): Error! Missing '%s' in FOOTER (line %d).",
                          "version", reader.getLineNumber());
    return false;
  }
  logUnused(lines, "RM::loadRobustSprite(): Warning! Unused FOOTER lines:");
  return true;
}

LineList SpriteLoader::readData(const std::string& tag) {
  const std::string opening = "<" + tag + ">";
  const std::string closing = "</" + tag + ">";
  std::string line = reader.getLine(true);
  if (line != opening) {
    logManager().writeLog("readData(): Error line %d! Expected '%s', have '%s'.",
                          reader.getLineNumber(), opening.c_str(), line.c_str());
    return {};
  }
  LineList lines;
  for (line = reader.getLine(false); line != closing && !line.empty();
       line = reader.getLine(true)) {
    lines.pushBack(line);
  }
  if (line.empty()) {
    logManager().writeLog("readData(): Error! Never encountered '%s'.", closing.c_str());
    return {};
  }
  reader.countLine();
  return lines;
}

Frame SpriteLoader::readFrame(LineList& lines, int width, int height) {
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

std::string SpriteLoader::takeLine(LineList& lines) {
  std::string line = lines.takeFront();
  reader.countLine();
  return line;
}

Frame SpriteLoader::noMoreFrameData() const {
  logManager().writeLog("\tError! Line %d: No more frame data before 'end'.",
                        reader.getLineNumber() + 1);
  return Frame();
}

int SpriteLoader::matchLineInt(LineList& lines, const std::string& tag) {
  bool found = false;
  const std::string value =
      matchValue(lines, tag, "matchLineInt(): Warning! '%s' matches multiple lines.", found);
  return found ? readInt(value) : -1;
}

std::string SpriteLoader::matchLineStr(LineList& lines, const std::string& tag) {
  bool found = false;
  return matchValue(lines, tag, "matchLineStr(): Warning! '%s' matches multiple lines.", found);
}

}  // namespace vt
