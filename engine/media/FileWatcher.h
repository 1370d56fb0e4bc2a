#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace vt {

// Tells which of the files it watches were written or replaced, without
// blocking and without polling the files: the kernel queues the news
// (inotify) and changedFiles reads what is queued. It watches each file's
// folder rather than the file itself, so that a file an editor saves by
// writing a new one and renaming it over the old one is still seen.
class FileWatcher {
 public:
  FileWatcher() = default;
  ~FileWatcher();
  FileWatcher(const FileWatcher&) = delete;
  FileWatcher& operator=(const FileWatcher&) = delete;

  // 0, or -1 (after logging why) when the system will not watch.
  int start();
  // Forgets every file and releases the kernel's queue.
  void stop();
  bool isStarted() const { return queue >= 0; }

  // Watches the file from now on; -1 (after logging why) when its folder
  // cannot be watched.
  int watch(const std::string& file_name);
  // The watched files written or renamed into place since the last call,
  // each once, named as they were given to watch.
  std::vector<std::string> changedFiles();

 private:
  // The watched files of one queued change.
  void noteChange(int folder, const std::string& name, std::vector<std::string>& changed) const;

  int queue = -1;
  // (folder's watch, name in the folder) -> the file names given to watch.
  std::map<std::pair<int, std::string>, std::vector<std::string>> files;
};

}  // namespace vt
