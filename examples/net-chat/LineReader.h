#pragma once

#include <string>
#include <vector>

// Whole lines from a file descriptor, read without ever waiting for input.
class LineReader {
 public:
  explicit LineReader(int init_fd);

  // The lines completed since the last call, without their newlines; once
  // the input has ended, an unfinished last line too.
  std::vector<std::string> readLines();
  bool atEnd() const { return at_end; }

 private:
  void readAvailable();

  int fd;
  std::string pending;
  bool at_end = false;
};
