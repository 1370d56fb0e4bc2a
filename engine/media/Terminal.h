#pragma once

#include <string>

namespace vt {

// The terminal the game is played in (the process's controlling terminal):
// raw input, the alternate screen, a hidden cursor, mouse reports and, where
// the terminal has it, the keyboard protocol that reports key releases.
// Whatever way the program ends (a normal end, an interrupt or termination
// signal, a crash signal, an uncaught exception, exit), the terminal gets
// its modes back.
class Terminal {
 public:
  static Terminal& getInstance();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  // Takes the terminal over; -1, with a log line, when there is none. Asks
  // what the terminal can do and waits a short while at most for the
  // answers.
  int open();
  // The log line of the last open that failed.
  std::string getOpenFailure() const { return open_failure; }
  // Gives the terminal back as it was.
  void close();
  bool isOpen() const { return fd >= 0; }

  // Writes all the bytes, as one write where the terminal takes them;
  // false when the terminal took not all of them in a while.
  bool write(const std::string& bytes);
  // What the terminal has sent since the last call, without waiting.
  std::string read();
  // The terminal's size in cells; false when it cannot be told.
  bool getSize(int& columns, int& rows) const;
  // Each true once after the terminal was resized, or after an interrupt,
  // termination or hang-up signal asked the game to end.
  bool takeResized();
  bool takeQuitRequest();
  // True when the terminal reports key presses, repeats and releases.
  bool hasKeyboardProtocol() const { return keyboard_protocol; }

 private:
  Terminal() = default;

  // Sends the capability queries and reads until the terminal has answered
  // them all or the time is up.
  void askCapabilities();
  std::string readWaiting();
  void installHandlers();
  void restoreHandlers();

  int fd = -1;
  std::string open_failure;
  bool keyboard_protocol = false;
  bool quit_reported = false;
  // Bytes that arrived while waiting for answers, for the next read.
  std::string early_input;
};

}  // namespace vt
