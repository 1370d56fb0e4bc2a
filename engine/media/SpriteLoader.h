#pragma once

#include <memory>
#include <string>

#include "media/Frame.h"
#include "media/LineList.h"
#include "media/LineReader.h"
#include "media/Sprite.h"

namespace vt {

// What a sprite file says about its frames before the frames themselves.
struct SpriteHeader {
  int frames = 0;
  int width = 0;
  int height = 0;
  int slowdown = 0;
  std::string color;
  char transparency = 0;
};

// Turns the text of a sprite file, in either of its two formats, into a
// sprite. Every problem is logged, with its line number where it has one,
// and gives a null sprite.
class SpriteLoader {
 public:
  explicit SpriteLoader(LineReader& init_reader) : reader(init_reader) {}

  // Tells the format from the first line and loads the file with it.
  std::unique_ptr<Sprite> load();
  // The bare format: frame count, width, height, slowdown and colour lines,
  // then the rows of every frame.
  std::unique_ptr<Sprite> loadSimpleSprite();
  // The sectioned format: <HEADER>, <BODY> and <FOOTER> sections.
  std::unique_ptr<Sprite> loadRobustSprite();

  // The lines of one section, opening and closing lines left out; empty
  // (after logging) when the section is missing, unclosed or holds a blank
  // line, and empty with nothing logged when the section itself is empty.
  LineList readData(const std::string& tag);
  // One frame of the body, consumed from the front of lines; an empty frame
  // (after logging) when the rows or their closing "end" are wrong.
  Frame readFrame(LineList& lines, int width, int height);

  // The value after the tag and one separator in the last line that starts
  // with the tag; every matching line is removed. -1 or an empty string
  // when no line matches.
  static int matchLineInt(LineList& lines, const std::string& tag);
  static std::string matchLineStr(LineList& lines, const std::string& tag);

 private:
  bool readSimpleHeader(SpriteHeader& header);
  // A header line of the bare format; logs when the file ends before it.
  std::string readSimpleHeaderLine(const char* missing);
  bool readSimpleHeaderInt(const char* missing, const char* name, int minimum, int& value);
  bool readSimpleColor(SpriteHeader& header);
  // Appends the frame's rows to rows.
  bool readSimpleFrame(std::string& rows, const SpriteHeader& header, int frame_number);
  bool checkSimpleEnd();

  bool readRobustHeader(SpriteHeader& header);
  static bool matchRequired(LineList& lines, const char* tag, int& value);
  static void matchOptional(LineList& lines, SpriteHeader& header);
  // Appends the rows of every frame of the body to rows.
  bool readRobustFrames(std::string& rows, LineList& body, const SpriteHeader& header);
  bool checkRobustFooter();

  // The front line of the list, removed and counted.
  std::string takeLine(LineList& lines);
  Frame noMoreFrameData() const;

  LineReader& reader;
};

}  // namespace vt
