#include "python/core/threads.h"

#include <algorithm>

namespace qdclgl::python {

namespace {

// Those for whom something waits. Never ended: threads may outlive the program's end.
std::vector<std::shared_ptr<Owner>>& Behind() {
  static auto& owners = *new std::vector<std::shared_ptr<Owner>>;
  return owners;
}

struct ThreadEnd {
  std::shared_ptr<Owner> owner = std::make_shared<Owner>();
  ~ThreadEnd() { owner->ended = true; }
};

bool IsMine(const std::shared_ptr<Owner>& owner) { return owner == ThisOwner() || owner->ended; }

}  // namespace

const std::shared_ptr<Owner>& ThisOwner() {
  thread_local const ThreadEnd end;
  return end.owner;
}

void ReleaseOf(const std::shared_ptr<Owner>& owner, Object* object) {
  if (IsMine(owner)) return object->Release();
  if (owner->waiting.empty()) Behind().push_back(owner);
  owner->waiting.push_back(object);
}

void ReleaseWaiting() {
  if (Behind().empty()) return;
  // What is released may run Python, and so come here again.
  std::vector<Object*> objects;
  std::erase_if(Behind(), [&](const std::shared_ptr<Owner>& owner) {
    if (!IsMine(owner)) return false;
    objects.insert(objects.end(), owner->waiting.begin(), owner->waiting.end());
    owner->waiting.clear();
    return true;
  });
  for (Object* object : objects) object->Release();
}

}  // namespace qdclgl::python
