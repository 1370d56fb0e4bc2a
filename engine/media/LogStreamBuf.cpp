#include "media/LogStreamBuf.h"

#include <SFML/System/Err.hpp>

#include "core/LogManager.h"

namespace vt {

LogStreamBuf::int_type LogStreamBuf::overflow(int_type ch) {
  if (traits_type::eq_int_type(ch, traits_type::eof())) return traits_type::not_eof(ch);
  if (ch != '\n') {
    line.push_back(traits_type::to_char_type(ch));
    return ch;
  }
  LogManager::getInstance().writeLog("%s%s", prefix.c_str(), line.c_str());
  line.clear();
  return ch;
}

void LogStreamBuf::captureSfmlErrors() {
  // Never deleted: SFML may still write errors while static objects are
  // being destroyed at exit.
  static LogStreamBuf* const p_sfml_errors = new LogStreamBuf("SFML: ");
  sf::err().rdbuf(p_sfml_errors);
}

}  // namespace vt
