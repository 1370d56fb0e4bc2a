#pragma once

#include <streambuf>
#include <string>

namespace vt {

// A stream buffer that writes every completed line to the log, after a
// prefix; used to take SFML's error stream off the terminal.
class LogStreamBuf : public std::streambuf {
 public:
  explicit LogStreamBuf(std::string init_prefix) : prefix(std::move(init_prefix)) {}

  // Sends SFML's error stream to the log from now on; safe to call often.
  static void captureSfmlErrors();

 protected:
  int_type overflow(int_type ch) override;

 private:
  std::string prefix;
  std::string line;
};

}  // namespace vt
