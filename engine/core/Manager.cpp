#include "core/Manager.h"

#include "core/LogManager.h"
#include "world/Object.h"

namespace vt {

bool Manager::isValid(std::string) const {
  return false;
}

int Manager::startUp() {
  if (is_started) {
    LogManager::getInstance().writeLog(1, "Manager::startUp(): Warning! %s already started.",
                                       type.c_str());
  }
  is_started = true;
  return 0;
}

void Manager::shutDown() {
  if (!is_started) {
    LogManager::getInstance().writeLog(1, "Manager::shutDown(): Warning! %s not started.",
                                       type.c_str());
  }
  is_started = false;
}

bool Manager::notStarted() const {
  if (is_started) return false;
  LogManager::getInstance().writeLog("%s not started!", type.c_str());
  return true;
}

bool Manager::alreadyStarted() {
  start_failure.clear();
  if (!is_started) return false;
  failStart(LogManager::getInstance().writeLogText("%s::startup(): Warning! %s already started.",
                                                   type.c_str(), type.c_str()));
  return true;
}

int Manager::failStart(std::string reason) {
  start_failure = std::move(reason);
  return -1;
}

int Manager::findSlot(const std::string& event_type) const {
  for (int i = 0; i < event_count; i++) {
    if (event_name[i] == event_type) return i;
  }
  return -1;
}

int Manager::registerInterest(Object* p_object, std::string event_type) {
  if (!isValid(event_type)) {
    LogManager::getInstance().writeLog(
        "Manager(%s)::registerInterest(): Event '%s' not valid for this Manager", type.c_str(),
        event_type.c_str());
    return -1;
  }
  const int slot = findSlot(event_type);
  if (slot >= 0) return obj_list[slot].insert(p_object);
  if (event_count == MAX_EVENTS) return -1;
  event_name[event_count] = event_type;
  obj_list[event_count].clear();
  obj_list[event_count].insert(p_object);
  event_count++;
  return 0;
}

int Manager::unregisterInterest(Object* p_object, std::string event_type) {
  const int slot = findSlot(event_type);
  if (slot < 0) return -1;
  if (obj_list[slot].remove(p_object) != 0) return -1;
  if (obj_list[slot].isEmpty()) {
    for (int i = slot; i < event_count - 1; i++) {
      event_name[i] = std::move(event_name[i + 1]);
      obj_list[i] = std::move(obj_list[i + 1]);
    }
    event_count--;
    event_name[event_count].clear();
    obj_list[event_count].clear();
  }
  return 0;
}

int Manager::onEvent(const Event* p_event) const {
  const std::string event_type = p_event->getType();
  if (event_type == UNDEFINED_EVENT) {
    LogManager::getInstance().writeLog(
        1, "Manager(%s)::onEvent(): Warning! Event type %s is undefined.", type.c_str(),
        event_type.c_str());
    return 0;
  }
  if (!isValid(event_type)) {
    LogManager::getInstance().writeLog(1, "Manager(%s)::onEvent(): Error! Event type %s not valid.",
                                       type.c_str(), event_type.c_str());
    return 0;
  }
  int count = 0;
  for (int i = 0; i < event_count; i++) {
    if (event_name[i] != event_type) continue;
    // A copy, so that handlers may register or unregister while it is walked.
    const ObjectList receivers = obj_list[i];
    for (Object* p_object : receivers) {
      if (!p_object->isActive()) continue;
      p_object->eventHandler(p_event);
      count++;
    }
  }
  return count;
}

}  // namespace vt
