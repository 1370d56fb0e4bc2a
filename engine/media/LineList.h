#pragma once

#include <cstddef>
#include <string>

namespace vt {

// The lines of a section of a sprite file, kept in one block of text so that
// a section of many short lines costs little more than the file itself.
// Lines are taken from the front; a filter drops lines anywhere.
class LineList {
 public:
  void pushBack(const std::string& line);
  bool empty() const { return line_count == 0; }
  std::size_t size() const { return line_count; }
  // The first line, removed from the list. The list must not be empty.
  std::string takeFront();

  // Calls visit with each line, in order.
  template <class Visit>
  void forEach(Visit visit) const {
    for (std::size_t begin = head; begin < text.size();) {
      const std::size_t end = text.find('\n', begin);
      visit(text.substr(begin, end - begin));
      begin = end + 1;
    }
  }

  // Keeps only the lines for which keep returns true, in order.
  template <class Keep>
  void filter(Keep keep) {
    std::string kept;
    std::size_t kept_count = 0;
    forEach([&](const std::string& line) {
      if (!keep(line)) return;
      kept += line;
      kept += '\n';
      kept_count++;
    });
    text.swap(kept);
    head = 0;
    line_count = kept_count;
  }

 private:
  // Every line followed by a newline; lines before head were taken.
  std::string text;
  std::size_t head = 0;
  std::size_t line_count = 0;
};

}  // namespace vt
