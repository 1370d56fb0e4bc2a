#include "support/TmuxSession.h"

#include <unistd.h>

#include <cstdlib>
#include <sstream>

namespace test {

namespace {

std::string quoted(const std::string& text) {
  std::string quoted_text = "'";
  for (const char ch : text) quoted_text += ch == '\'' ? std::string("'\\''") : std::string(1, ch);
  return quoted_text + "'";
}

int sessions_started = 0;

}  // namespace

// Each session has a tmux server of its own, named like it: a session
// ending never takes another one's server down.
TmuxSession::TmuxSession(const std::string& command, int columns, int rows)
    : name("vt-test-" + std::to_string(getpid()) + "-" + std::to_string(sessions_started++)),
      folder(makeTempDir()) {
  const std::string script = command + "; echo $? > " + folder + "/status; sleep 600";
  running = succeeds("new-session -d -s " + name + " -x " + std::to_string(columns) + " -y " +
                     std::to_string(rows) + " " + quoted("sh -c " + quoted(script)));
}

std::string TmuxSession::tmux(const std::string& arguments) const {
  return "tmux -L " + name + " " + arguments + " 2>/dev/null";
}

bool TmuxSession::succeeds(const std::string& arguments) const {
  return std::system(tmux(arguments).c_str()) == 0;
}

std::string TmuxSession::run(const std::string& arguments) const {
  const std::string output = folder + "/output";
  succeeds(arguments + " > " + output);
  return readFile(output);
}

bool TmuxSession::sendKeys(const std::string& keys, bool literal) const {
  return succeeds("send-keys -t " + name + (literal ? " -l " + quoted(keys) : " " + keys));
}

bool TmuxSession::resize(int columns, int rows) const {
  return succeeds("resize-window -t " + name + " -x " + std::to_string(columns) + " -y " +
                  std::to_string(rows));
}

std::vector<std::string> TmuxSession::screenText() const {
  std::vector<std::string> rows;
  std::istringstream text(run("capture-pane -p -t " + name));
  for (std::string row; std::getline(text, row);) rows.push_back(row);
  return rows;
}

std::string TmuxSession::screenWithColours() const {
  return run("capture-pane -p -e -t " + name);
}

std::string TmuxSession::paneFormat(const std::string& format) const {
  std::string value = run("display-message -p -t " + name + " " + quoted(format));
  while (!value.empty() && value.back() == '\n') value.pop_back();
  return value;
}

int TmuxSession::exitStatus() const {
  const std::string status = readFile(folder + "/status");
  return status.empty() ? -1 : std::stoi(status);
}

bool TmuxSession::shows(const std::string& words) const {
  return run("capture-pane -p -t " + name).find(words) != std::string::npos;
}

}  // namespace test
