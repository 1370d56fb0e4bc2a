#pragma once

#include <string>
#include <vector>

#include "support/HeadlessEngine.h"

namespace test {

// A program run in a terminal of its own: a detached tmux session of a given
// size. Keys are typed with send-keys; the screen is read with capture-pane.
class TmuxSession {
 public:
  // Starts the shell command in a session named after this process. The command's exit status is
  // written to statusFile(); the pane stays open after it ends, so its modes can still be read.
  TmuxSession(const std::string& command, int columns, int rows);
  ~TmuxSession() { succeeds("kill-server"); }
  TmuxSession(const TmuxSession&) = delete;
  TmuxSession& operator=(const TmuxSession&) = delete;

  // False when tmux could not start the session.
  bool isRunning() const { return running; }
  // tmux send-keys with the words given (key names or, literal, bytes).
  bool sendKeys(const std::string& keys, bool literal = false) const;
  // The screen's characters, one string a row.
  std::vector<std::string> screenText() const;
  // The screen with the colour codes tmux would send (capture-pane -e).
  std::string screenWithColours() const;
  // Resizes the terminal, as a player dragging its window would.
  bool resize(int columns, int rows) const;
  // A tmux format of the pane, such as "#{alternate_on}".
  std::string paneFormat(const std::string& format) const;
  // The command's exit status once it ended, else -1.
  int exitStatus() const;
  // The screen's text contains the words.
  bool shows(const std::string& words) const;

 private:
  // The tmux command line for the arguments, on this session's server.
  std::string tmux(const std::string& arguments) const;
  bool succeeds(const std::string& arguments) const;
  // The command's standard output.
  std::string run(const std::string& arguments) const;

  std::string name;
  std::string folder;
  bool running = false;
};

}  // namespace test
