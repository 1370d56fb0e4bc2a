#include "media/FileWatcher.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>

#include "core/LogManager.h"

namespace vt {

namespace {

// A file is done when its writer closes it or when it is renamed into
// place; a file still being written is not read half-way.
const std::uint32_t CHANGE_EVENTS = IN_CLOSE_WRITE | IN_MOVED_TO;

std::string folderOf(const std::string& file_name) {
  const std::string folder = std::filesystem::path(file_name).parent_path().string();
  return folder.empty() ? "." : folder;
}

void addOnce(std::vector<std::string>& names, const std::string& name) {
  if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
}

}  // namespace

FileWatcher::~FileWatcher() {
  stop();
}

int FileWatcher::start() {
  if (isStarted()) return 0;
  queue = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (queue >= 0) return 0;
  LogManager::getInstance().writeLog("FileWatcher::start(): Warning! Cannot watch files: %s.",
                                     std::strerror(errno));
  return -1;
}

void FileWatcher::stop() {
  if (isStarted()) close(queue);
  queue = -1;
  files.clear();
}

int FileWatcher::watch(const std::string& file_name) {
  if (!isStarted()) return -1;
  const std::string folder = folderOf(file_name);
  const int watch_id = inotify_add_watch(queue, folder.c_str(), CHANGE_EVENTS);
  if (watch_id < 0) {
    LogManager::getInstance().writeLog(
        "FileWatcher::watch(): Warning! Cannot watch folder '%s' of '%s': %s.", folder.c_str(),
        file_name.c_str(), std::strerror(errno));
    return -1;
  }
  const std::string name = std::filesystem::path(file_name).filename().string();
  addOnce(files[{watch_id, name}], file_name);
  return 0;
}

std::vector<std::string> FileWatcher::changedFiles() {
  std::vector<std::string> changed;
  if (!isStarted()) return changed;
  alignas(inotify_event) char buffer[4096];
  ssize_t length = 0;
  while ((length = read(queue, buffer, sizeof(buffer))) > 0) {
    for (ssize_t offset = 0; offset < length;) {
      const auto* p_event = reinterpret_cast<const inotify_event*>(buffer + offset);
      offset += static_cast<ssize_t>(sizeof(inotify_event) + p_event->len);
      // The kernel dropped news: any watched file may have changed.
      if (p_event->mask & IN_Q_OVERFLOW) {
        for (const auto& entry : files) {
          for (const std::string& file_name : entry.second) addOnce(changed, file_name);
        }
      } else if (p_event->len > 0) {
        noteChange(p_event->wd, p_event->name, changed);
      }
    }
  }
  return changed;
}

void FileWatcher::noteChange(int folder, const std::string& name,
                             std::vector<std::string>& changed) const {
  const auto found = files.find({folder, name});
  if (found == files.end()) return;
  for (const std::string& file_name : found->second) addOnce(changed, file_name);
}

}  // namespace vt
