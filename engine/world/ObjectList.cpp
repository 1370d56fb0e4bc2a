#include "world/ObjectList.h"

#include <algorithm>

namespace vt {

int ObjectList::insert(Object* p_object) {
  objects.push_back(p_object);
  return 0;
}

int ObjectList::remove(const Object* p_object) {
  const auto found = std::find(objects.begin(), objects.end(), p_object);
  if (found == objects.end()) return -1;
  objects.erase(found);
  return 0;
}

bool ObjectList::contains(const Object* p_object) const {
  return std::find(objects.begin(), objects.end(), p_object) != objects.end();
}

ObjectList& ObjectList::operator+=(const ObjectList& other) {
  objects.insert(objects.end(), other.objects.begin(), other.objects.end());
  return *this;
}

}  // namespace vt
