#pragma once

#include <cstddef>
#include <vector>

namespace vt {

class Object;

// An ordered list of object pointers. It owns nothing; copies are cheap
// snapshots that callers may walk while the original changes.
class ObjectList {
 public:
  using const_iterator = std::vector<Object*>::const_iterator;

  // Appends; returns 0 (the list has no fixed capacity).
  int insert(Object* p_object);
  // Removes the first occurrence; -1 when the object is absent.
  int remove(const Object* p_object);
  void clear() { objects.clear(); }
  bool contains(const Object* p_object) const;

  int getCount() const { return static_cast<int>(objects.size()); }
  bool isEmpty() const { return objects.empty(); }
  Object* operator[](std::size_t index) const { return objects[index]; }

  // Appends every object of the other list.
  ObjectList& operator+=(const ObjectList& other);

  const_iterator begin() const { return objects.begin(); }
  const_iterator end() const { return objects.end(); }

 private:
  std::vector<Object*> objects;
};

}  // namespace vt
