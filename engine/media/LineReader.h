#pragma once

#include <fstream>
#include <string>

namespace vt {

// Reads a sprite file line by line and keeps the file-wide line counter that
// the loaders quote in their messages. Lines are bounded: a line longer than
// MAX_LINE_LENGTH, like a read error, stops the reading short of the end of
// the file, so no file content can exhaust memory or pass for a whole file.
class LineReader {
 public:
  // Longest line kept whole.
  static const int MAX_LINE_LENGTH = 4096;

  // Opens the file and resets the line counter; false when it cannot be
  // opened or is a folder.
  bool open(const std::string& filename);
  // Back to the first line; the line counter is kept.
  void rewind();

  // The next line without its newline and one trailing carriage return,
  // counted when count is true. At the end of the file logs the
  // unexpected end and returns an empty string.
  std::string getLine(bool count);
  // The next line exactly as it is (carriage return kept); false when
  // nothing was left to read.
  bool readRawLine(std::string& line);
  // True once a read has met the end of the file; never after the reading
  // stopped short of it.
  bool atEnd() const { return at_end; }

  int getLineNumber() const { return line_number; }
  void countLine() { line_number++; }

 private:
  // Reads up to the newline; false when the reading stops short of it.
  bool readUntilNewline(std::string& line);
  // Logs why and reads nothing more.
  void stopReading(const std::string& reason);

  std::filebuf file;
  bool at_end = false;
  bool stopped = false;
  int line_number = 0;
};

}  // namespace vt
