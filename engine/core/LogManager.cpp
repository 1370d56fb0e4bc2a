#include "core/LogManager.h"

#include <cstdlib>
#include <optional>

#include "core/Config.h"
#include "core/Utility.h"

namespace vt {

LogManager::LogManager() {
  setType("LogManager");
}

LogManager::~LogManager() {
  if (p_file != nullptr) std::fclose(p_file);
  for (auto& entry : extra_files) std::fclose(entry.second);
}

LogManager& LogManager::getInstance() {
  static LogManager log_manager;
  return log_manager;
}

int LogManager::startUp() {
  if (alreadyStarted()) return -1;
  const char* p_override = std::getenv("VANTOR_LOG");
  log_file_name = p_override ? p_override : Config::getInstance().getLogFile();
  p_file = std::fopen(log_file_name.c_str(), "w");
  if (p_file == nullptr) {
    writeLog("LogManager::startup(): Warning! Unable to open file '%s'.", log_file_name.c_str());
    return -1;
  }
  Manager::startUp();
  applyLevelSetting();
  writeLog(5, "LogManager::startUp(): successfully started.");
  return 0;
}

void LogManager::applyLevelSetting() {
  const char* p_level = std::getenv("VANTOR_LOG_LEVEL");
  if (p_level != nullptr && readFault(p_level, ValueKind::INT) != ReadFault::NOT_READ) {
    setLogLevel(readInt(p_level));
    return;
  }
  if (p_level != nullptr) {
    std::fprintf(stderr, "vantor: VANTOR_LOG_LEVEL '%s' is not a number; ignored\n", p_level);
    writeLog(0, "LogManager::startUp(): Warning! VANTOR_LOG_LEVEL '%s' is not a number; ignored.",
             p_level);
  }
  const std::optional<int> configured = Config::getInstance().getLogLevel();
  if (configured) setLogLevel(*configured);
}

void LogManager::flush() const {
  if (p_file != nullptr) std::fflush(p_file);
  for (const auto& entry : extra_files) std::fflush(entry.second);
}

void LogManager::shutDown() {
  Manager::shutDown();
  writeLog(5, "LogManager::shutDown(): successfully stopped.");
  if (p_file != nullptr) {
    std::fclose(p_file);
    p_file = nullptr;
  }
  for (auto& entry : extra_files) std::fclose(entry.second);
  extra_files.clear();
}

void LogManager::setLogLevel(int new_log_level) {
  log_level = new_log_level;
  if (log_level >= 2) writeLog("setLogLevel(): log level %d", log_level);
}

int LogManager::writeLine(FILE* p_stream, int level, const char* format, va_list args) const {
  if (level > log_level) return 0;
  FILE* p_target = p_stream ? p_stream : stderr;
  bool failed = false;
  if (log_time_string) failed |= std::fprintf(p_target, "%s ", getTimeString()) < 0;
  if (log_step_count) {
    failed |= std::fprintf(p_target, "%4d ", step_count) < 0;
  }
  const int length = std::vfprintf(p_target, format, args);
  failed |= length < 0;
  failed |= std::fputc('\n', p_target) == EOF;
  if (do_flush) std::fflush(p_target);
  return failed ? -1 : length;
}

int LogManager::writeLog(int level, const char* format, ...) const {
  va_list args;
  va_start(args, format);
  const int result = writeLine(p_file, level, format, args);
  va_end(args);
  return result;
}

int LogManager::writeLog(const char* format, ...) const {
  va_list args;
  va_start(args, format);
  const int result = writeLine(p_file, log_level, format, args);
  va_end(args);
  return result;
}

std::string LogManager::writeLogText(const char* format, ...) const {
  va_list args;
  va_start(args, format);
  va_list size_args;
  va_copy(size_args, args);
  const int length = std::vsnprintf(nullptr, 0, format, size_args);
  va_end(size_args);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, args);
  va_end(args);
  writeLog("%s", text.c_str());
  return text;
}

FILE* LogManager::streamFor(const std::string& file_name) {
  if (file_name == Config::getInstance().getLogFile()) return p_file;
  const auto found = extra_files.find(file_name);
  if (found != extra_files.end()) return found->second;
    // The announcement is an unused argument: the line reads only the name of
    // the operation.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-extra-args"
  writeLog(5, "LogManager::writeMyLog()", "File %s is new.");
#pragma GCC diagnostic pop
  FILE* p_stream = std::fopen(file_name.c_str(), "w");
  if (p_stream == nullptr) {
    writeLog("LogManager::startup(): Warning! Unable to open file '%s'.\n", file_name.c_str());
    return nullptr;
  }
  extra_files[file_name] = p_stream;
  return p_stream;
}

int LogManager::writeMyLog(const std::string& file_name, int, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = writeLine(streamFor(file_name), log_level, format, args);
  va_end(args);
  return result;
}

int LogManager::writeMyLog(const std::string& file_name, const char* format, ...) {
  va_list args;
  va_start(args, format);
  const int result = writeLine(streamFor(file_name), log_level, format, args);
  va_end(args);
  return result;
}

}  // namespace vt
