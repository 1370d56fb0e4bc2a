#include "LineReader.h"

#include <poll.h>
#include <unistd.h>

LineReader::LineReader(int init_fd) : fd(init_fd) {}

void LineReader::readAvailable() {
  pollfd poll_fd{fd, POLLIN, 0};
  char chunk[4096];
  while (!at_end && poll(&poll_fd, 1, 0) > 0) {
    const ssize_t count = read(fd, chunk, sizeof(chunk));
    if (count <= 0) {
      at_end = true;
    } else {
      pending.append(chunk, static_cast<std::size_t>(count));
    }
  }
}

std::vector<std::string> LineReader::readLines() {
  readAvailable();
  std::vector<std::string> lines;
  for (auto end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
    lines.push_back(pending.substr(0, end));
    pending.erase(0, end + 1);
  }
  if (at_end && !pending.empty()) {
    lines.push_back(pending);
    pending.clear();
  }
  return lines;
}
