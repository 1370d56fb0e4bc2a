#include "media/LineList.h"

namespace vt {

void LineList::pushBack(const std::string& line) {
  text += line;
  text += '\n';
  line_count++;
}

std::string LineList::takeFront() {
  const std::size_t end = text.find('\n', head);
  std::string line = text.substr(head, end - head);
  head = end + 1;
  line_count--;
  return line;
}

}  // namespace vt
