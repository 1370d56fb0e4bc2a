#pragma once

#include <cstdarg>
#include <cstdio>
#include <map>
#include <string>

#include "core/Manager.h"

#define VT_PRINTF(format_index) __attribute__((format(printf, format_index, format_index + 1)))

namespace vt {

// Writes the engine's and the game's diagnostic lines to the log file, each
// stamped with the time of day and the game loop's step count. The log
// level comes from the game, the configuration's log_level or, before both,
// the environment's VANTOR_LOG_LEVEL.
class LogManager : public Manager {
 public:
  static LogManager& getInstance();
  ~LogManager() override;

  int startUp() override;
  void shutDown() override;

  // A line of the given level, written when it does not exceed the log level.
  // Returns the message's length, 0 when filtered out, -1 on a failed write.
  int writeLog(int level, const char* format, ...) const VT_PRINTF(3);
  // A line that is always written.
  int writeLog(const char* format, ...) const VT_PRINTF(2);
  // The same line, written the same way; returns its text, without the
  // stamp, for a caller that keeps it too (why a manager did not start).
  std::string writeLogText(const char* format, ...) const VT_PRINTF(2);
  // A line written to a file of its own, opened on first use; always written
  // (the level is accepted for symmetry and not used).
  int writeMyLog(const std::string& file_name, int level, const char* format, ...) VT_PRINTF(4);
  int writeMyLog(const std::string& file_name, const char* format, ...) VT_PRINTF(3);

  // The file the log goes to, or was to go to when it could not be opened.
  std::string getLogFileName() const { return log_file_name; }

  // Writes every line still buffered to its file. The game loop calls it
  // at the end of every step, so that a game killed at any moment leaves a
  // log complete up to its last finished step.
  void flush() const;
  void setFlush(bool new_do_flush = true) { do_flush = new_do_flush; }
  void setLogLevel(int new_log_level);
  int getLogLevel() const { return log_level; }
  void setLogTimeString(bool new_log_time_string) { log_time_string = new_log_time_string; }
  void setLogStepCount(bool new_log_step_count) { log_step_count = new_log_step_count; }
  // The game loop's step count that stamps each line; the loop sets it.
  void setStepCount(int new_step_count) { step_count = new_step_count; }

 private:
  LogManager();

  int writeLine(FILE* p_stream, int level, const char* format, va_list args) const;
  // Takes the level from VANTOR_LOG_LEVEL, else from the configuration's
  // log_level; without either the level stays as the game set it.
  void applyLevelSetting();
  FILE* streamFor(const std::string& file_name);

  bool do_flush = false;
  int log_level = 0;
  bool log_time_string = true;
  bool log_step_count = true;
  int step_count = 0;
  FILE* p_file = nullptr;
  std::string log_file_name;
  std::map<std::string, FILE*> extra_files;
};

}  // namespace vt
