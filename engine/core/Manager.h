#pragma once

#include <string>

#include "core/Event.h"
#include "world/ObjectList.h"

namespace vt {

// Most distinct event types one manager keeps interests for.
const int MAX_EVENTS = 100;

// Base of every engine service: a type name, a started flag and the table of
// objects interested in each event type this manager delivers.
class Manager {
 public:
  Manager() = default;
  Manager(const Manager&) = delete;
  Manager& operator=(const Manager&) = delete;

  // May this manager deliver events of this type? The base accepts none.
  virtual bool isValid(std::string event_type) const;
  virtual ~Manager() = default;
  virtual int startUp();
  virtual void shutDown();

  std::string getType() const { return type; }
  void setType(std::string new_type) { type = std::move(new_type); }
  bool isStarted() const { return is_started; }
  // Why the last startUp failed, as its log line said it; "" when it did
  // not fail, or failed without a word.
  std::string getStartFailure() const { return start_failure; }

  int registerInterest(Object* p_object, std::string event_type);
  int unregisterInterest(Object* p_object, std::string event_type);
  // Hands the event to every active object registered for its type, in
  // registration order; returns how many received it.
  int onEvent(const Event* p_event) const;

 protected:
  // Logs "<type> not started!" and returns true when the manager is down.
  bool notStarted() const;
  // Called first by every startUp: forgets the last start's failure, then
  // logs "<type>::startup(): Warning! <type> already started." and returns
  // true when the manager is up, which fails this start.
  bool alreadyStarted();
  // Keeps the reason this start fails and returns -1, for a startUp to return.
  int failStart(std::string reason);

 private:
  int findSlot(const std::string& event_type) const;

  std::string type = "Manager";
  bool is_started = false;
  std::string start_failure;
  int event_count = 0;
  std::string event_name[MAX_EVENTS];
  ObjectList obj_list[MAX_EVENTS];
};

}  // namespace vt
