// The shooter as a process: what its log holds when it is killed, and what
// it says when started from the wrong folder.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "support/HeadlessEngine.h"
#include "support/TestSupport.h"

namespace {

// Runs the command in a shell of its own; returns the shell's process id.
pid_t startShell(const std::string& command) {
  const pid_t pid = fork();
  if (pid == 0) {
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    _exit(127);
  }
  return pid;
}

// Reads the file until it holds the text, for at most a minute.
bool waitForText(const std::string& file, const std::string& text) {
  for (int tries = 0; tries < 1200; tries++) {
    if (test::readFile(file).find(text) != std::string::npos) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}

// The number of steps in the stamp of the first line holding the text, -1
// when no line does.
int stepOfLine(const std::string& log, const std::string& text) {
  const std::size_t found = log.find(text);
  if (found == std::string::npos) return -1;
  const std::size_t line_start = log.rfind('\n', found) + 1;
  return std::stoi(log.substr(line_start + 9, found - line_start - 9));
}

}  // namespace

// Killed at once, the game leaves in its log every line of the steps it
// finished: its start-up, and what it wrote once the splash screen's steps
// had run.
TEST(ShooterProcess, AGameKilledMidWayLeavesItsLogUpToItsLastStep) {
  const std::string folder = test::makeTempDir();
  const std::string log_file = folder + "/vantor.log";
  const pid_t pid = startShell("cd " VANTOR_GAME_DIR
                               " && exec env VANTOR_HEADLESS=1 ALSOFT_DRIVERS=null VANTOR_LOG=" +
                               log_file + " ./shooter > /dev/null 2>&1");
  ASSERT_GT(pid, 0);
  const std::string after_splash = " Pause::Pause(): Pause enabled.";
  const bool shown = waitForText(log_file, after_splash);
  kill(pid, SIGKILL);
  int status = 0;
  waitpid(pid, &status, 0);
  ASSERT_TRUE(shown) << test::readFile(log_file);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
  const std::string log = test::readFile(log_file);
  for (const char* line :
       {"    0 ** Vantor version 4.17 **\n", "    0 ** Game engine started **\n"}) {
    EXPECT_NE(log.find(line), std::string::npos) << line << " in\n" << log;
  }
  EXPECT_GT(stepOfLine(log, after_splash), 0) << log;
  std::filesystem::remove_all(folder);
}

// Started from a folder without its font and configuration, the game says
// on standard error which folder that was and what it lacked.
TEST(ShooterProcess, StartedFromAnotherFolderItNamesTheFolderAndWhatItLacks) {
  ASSERT_TRUE(vt::test::startProcessXvfb());
  const std::string folder = test::makeTempDir();
  const std::string command = "cd " + folder +
                              " && env -u VANTOR_CONFIG -u VANTOR_LOG -u VANTOR_HEADLESS "
                              "ALSOFT_DRIVERS=null " VANTOR_GAME_DIR "/shooter 2> " +
                              folder + "/said";
  const int status = std::system(command.c_str());
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
  EXPECT_EQ(test::readFile(folder + "/said"),
            "vantor: cannot start the display manager: DisplayManager::startUp(): Unable to load "
            "font from file 'vt-font.ttf'. See " +
                folder + "/vantor.log\nvantor: missing from the working folder " + folder +
                ": the font file vt-font.ttf, vt-config.txt; start the game from its own "
                "folder\n");
  std::filesystem::remove_all(folder);
}
