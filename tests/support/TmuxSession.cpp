#include "support/TmuxSession.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <thread>

#include "support/HeadlessEngine.h"

namespace test {

namespace {

std::string quoted(const std::string& text) {
  std::string quoted_text = "'";
  for (const char ch : text) quoted_text += ch == '\'' ? std::string("'\\''") : std::string(1, ch);
  return quoted_text + "'";
}

}  // namespace

TmuxSession::TmuxSession(const std::string& command, int columns, int rows)
    : name("vt-test-" + std::to_string(getpid())), folder(makeTempDir()) {
  const std::string script = command + "; echo $? > " + folder + "/status; sleep 600";
  running = std::system(("tmux -L vantor-tests new-session -d -s " + name + " -x " +
                         std::to_string(columns) + " -y " + std::to_string(rows) + " " +
                         quoted("sh -c " + quoted(script)))
                            .c_str()) == 0;
}

TmuxSession::~TmuxSession() {
  run("kill-session -t " + name);
  std::filesystem::remove_all(folder);
}

std::string TmuxSession::run(const std::string& tmux_arguments) const {
  std::string output;
  FILE* p_pipe = popen(("tmux -L vantor-tests " + tmux_arguments + " 2>/dev/null").c_str(), "r");
  if (p_pipe == nullptr) return output;
  char buffer[4096];
  std::size_t count = 0;
  while ((count = fread(buffer, 1, sizeof(buffer), p_pipe)) > 0) output.append(buffer, count);
  pclose(p_pipe);
  return output;
}

bool TmuxSession::sendKeys(const std::string& keys, bool literal) const {
  const std::string command =
      "tmux -L vantor-tests send-keys -t " + name + (literal ? " -l " + quoted(keys) : " " + keys);
  return std::system(command.c_str()) == 0;
}

bool TmuxSession::resize(int columns, int rows) const {
  return std::system(("tmux -L vantor-tests resize-window -t " + name + " -x " +
                      std::to_string(columns) + " -y " + std::to_string(rows))
                         .c_str()) == 0;
}

std::vector<std::string> TmuxSession::screenText() const {
  std::vector<std::string> rows;
  std::istringstream text(run("capture-pane -p -t " + name));
  std::string row;
  while (std::getline(text, row)) rows.push_back(row);
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

bool TmuxSession::waitFor(const std::function<bool()>& condition, double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return true;
}

bool TmuxSession::shows(const std::string& words) const {
  for (const std::string& row : screenText()) {
    if (row.find(words) != std::string::npos) return true;
  }
  return false;
}

}  // namespace test
