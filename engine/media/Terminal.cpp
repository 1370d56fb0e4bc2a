#include "media/Terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>

#include "core/LogManager.h"
#include "media/TerminalInput.h"

namespace vt {

namespace {

// Alternate screen, cursor hidden, no wrapping at the right edge, and every
// mouse button and move reported in SGR form.
const char ENTER_SEQUENCE[] = "\x1b[?1049h\x1b[?25l\x1b[?7l\x1b[?1003h\x1b[?1006h";
const char LEAVE_SEQUENCE[] = "\x1b[?1006l\x1b[?1003l\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l";
// Asks for the keyboard protocol's flags, then for the device attributes,
// which every terminal answers: once that answer is in, no other will come.
const char CAPABILITY_QUERY[] = "\x1b[?u\x1b[c";
// Press, repeat and release reported, every key as an escape code.
const char PUSH_KEYBOARD_FLAGS[] = "\x1b[>11u";
const char POP_KEYBOARD_FLAGS[] = "\x1b[<u";
const int ANSWER_WAIT_MS = 300;
// A terminal that takes no output this long is not waited for: the frame's
// rest is dropped, and the next frame is written whole.
const int WRITE_WAIT_MS = 500;

const int QUIT_SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};
const int CRASH_SIGNALS[] = {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL};

// What the signal handlers need, kept where they can reach it without
// locks or allocation.
int restore_fd = -1;
struct termios saved_modes;
char restore_bytes[64];
std::size_t restore_length = 0;
volatile std::sig_atomic_t quit_requested = 0;
volatile std::sig_atomic_t resized = 0;
struct sigaction saved_quit_actions[std::size(QUIT_SIGNALS)];
struct sigaction saved_crash_actions[std::size(CRASH_SIGNALS)];
struct sigaction saved_resize_action;
std::terminate_handler saved_terminate = nullptr;
bool exit_hook_registered = false;

// Safe inside a signal handler: a write and a mode change, nothing else.
void restoreModes() {
  if (restore_fd < 0) return;
  ssize_t written = ::write(restore_fd, restore_bytes, restore_length);
  (void)written;
  tcsetattr(restore_fd, TCSANOW, &saved_modes);
  restore_fd = -1;
}

// A second request while the first is still being served ends the program
// at once: a game stuck in a step still gives the terminal back.
void onQuitSignal(int signal_number) {
  if (quit_requested == 0) {
    quit_requested = 1;
    return;
  }
  restoreModes();
  std::signal(signal_number, SIG_DFL);
  std::raise(signal_number);
}

void onCrashSignal(int signal_number) {
  restoreModes();
  std::signal(signal_number, SIG_DFL);
  std::raise(signal_number);
}

void onResize(int) {
  resized = 1;
}

void onTerminate() {
  restoreModes();
  if (saved_terminate != nullptr) saved_terminate();
  std::abort();
}

void onExit() {
  restoreModes();
}

void setHandler(int signal_number, void (*handler)(int), struct sigaction* p_saved) {
  struct sigaction action;
  std::memset(&action, 0, sizeof(action));
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  sigaction(signal_number, &action, p_saved);
}

void setRestoreBytes(bool keyboard_protocol) {
  std::string bytes = keyboard_protocol ? POP_KEYBOARD_FLAGS : "";
  bytes += LEAVE_SEQUENCE;
  restore_length = std::min(bytes.size(), sizeof(restore_bytes));
  std::memcpy(restore_bytes, bytes.data(), restore_length);
}

int millisecondsSince(const struct timespec& start) {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<int>((now.tv_sec - start.tv_sec) * 1000 +
                          (now.tv_nsec - start.tv_nsec) / 1000000);
}

}  // namespace

Terminal& Terminal::getInstance() {
  static Terminal terminal;
  return terminal;
}

int Terminal::open() {
  if (isOpen()) return 0;
  const LogManager& log_manager = LogManager::getInstance();
  fd = ::open("/dev/tty", O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) {
    open_failure = log_manager.writeLogText("Terminal::open(): Error! No terminal to play in: %s.",
                                            std::strerror(errno));
    return -1;
  }
  if (tcgetattr(fd, &saved_modes) != 0) {
    open_failure = log_manager.writeLogText(
        "Terminal::open(): Error! Cannot read the terminal's modes: %s.", std::strerror(errno));
    ::close(fd);
    fd = -1;
    return -1;
  }
  struct termios raw = saved_modes;
  cfmakeraw(&raw);
  raw.c_cc[VMIN] = 0;
  raw.c_cc[VTIME] = 0;
  tcsetattr(fd, TCSANOW, &raw);
  keyboard_protocol = false;
  setRestoreBytes(false);
  restore_fd = fd;
  installHandlers();
  write(ENTER_SEQUENCE);
  askCapabilities();
  if (keyboard_protocol) {
    write(PUSH_KEYBOARD_FLAGS);
    setRestoreBytes(true);
  }
  log_manager.writeLog(1, "Terminal::open(): playing in the terminal; key releases %s.",
                       keyboard_protocol ? "reported" : "guessed from auto-repeat");
  return 0;
}

void Terminal::askCapabilities() {
  write(CAPABILITY_QUERY);
  TerminalInput answers;
  struct timespec start;
  clock_gettime(CLOCK_MONOTONIC, &start);
  while (true) {
    const int left = ANSWER_WAIT_MS - millisecondsSince(start);
    struct pollfd waiting = {fd, POLLIN, 0};
    if (left <= 0 || poll(&waiting, 1, left) <= 0) break;
    const std::string bytes = readWaiting();
    early_input += bytes;
    bool answered = false;
    for (const TerminalEvent& event : answers.feed(bytes.data(), bytes.size())) {
      if (event.type == TerminalEvent::KEYBOARD_PROTOCOL) keyboard_protocol = true;
      if (event.type == TerminalEvent::DEVICE_ATTRIBUTES) answered = true;
    }
    if (answered) break;
  }
}

void Terminal::close() {
  if (!isOpen()) return;
  restoreModes();
  restoreHandlers();
  ::close(fd);
  fd = -1;
  keyboard_protocol = false;
  early_input.clear();
  quit_requested = 0;
  quit_reported = false;
  resized = 0;
}

void Terminal::installHandlers() {
  quit_requested = 0;
  resized = 0;
  for (std::size_t i = 0; i < std::size(QUIT_SIGNALS); i++) {
    setHandler(QUIT_SIGNALS[i], onQuitSignal, &saved_quit_actions[i]);
  }
  for (std::size_t i = 0; i < std::size(CRASH_SIGNALS); i++) {
    setHandler(CRASH_SIGNALS[i], onCrashSignal, &saved_crash_actions[i]);
  }
  setHandler(SIGWINCH, onResize, &saved_resize_action);
  saved_terminate = std::set_terminate(onTerminate);
  if (!exit_hook_registered) exit_hook_registered = std::atexit(onExit) == 0;
}

void Terminal::restoreHandlers() {
  for (std::size_t i = 0; i < std::size(QUIT_SIGNALS); i++) {
    sigaction(QUIT_SIGNALS[i], &saved_quit_actions[i], nullptr);
  }
  for (std::size_t i = 0; i < std::size(CRASH_SIGNALS); i++) {
    sigaction(CRASH_SIGNALS[i], &saved_crash_actions[i], nullptr);
  }
  sigaction(SIGWINCH, &saved_resize_action, nullptr);
  std::set_terminate(saved_terminate);
}

bool Terminal::write(const std::string& bytes) {
  std::size_t done = 0;
  struct timespec start;
  clock_gettime(CLOCK_MONOTONIC, &start);
  while (isOpen() && done < bytes.size()) {
    const ssize_t written = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (written > 0) {
      done += static_cast<std::size_t>(written);
      continue;
    }
    if (written < 0 && errno != EAGAIN && errno != EINTR) return false;
    const int left = WRITE_WAIT_MS - millisecondsSince(start);
    struct pollfd waiting = {fd, POLLOUT, 0};
    if (left <= 0) return false;
    poll(&waiting, 1, left);
  }
  return done == bytes.size();
}

std::string Terminal::read() {
  std::string bytes;
  bytes.swap(early_input);
  return bytes + readWaiting();
}

std::string Terminal::readWaiting() {
  std::string bytes;
  char buffer[4096];
  while (isOpen()) {
    const ssize_t count = ::read(fd, buffer, sizeof(buffer));
    if (count <= 0) break;
    bytes.append(buffer, static_cast<std::size_t>(count));
  }
  return bytes;
}

bool Terminal::getSize(int& columns, int& rows) const {
  struct winsize size;
  if (!isOpen() || ioctl(fd, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
    return false;
  }
  columns = size.ws_col;
  rows = size.ws_row;
  return true;
}

bool Terminal::takeResized() {
  if (resized == 0) return false;
  resized = 0;
  return true;
}

bool Terminal::takeQuitRequest() {
  if (quit_requested == 0 || quit_reported) return false;
  quit_reported = true;
  return true;
}

}  // namespace vt
