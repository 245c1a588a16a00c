// The loaded server: what keeps it in memory, and where its file is.
#pragma once

#include "qdclgl/automation/com.h"

namespace qdclgl::automation {

// One for every object that a client holds.
void LockServer();
void UnlockServer();
// The locks of factories, which clients count.
void AddClientLock();
// False, and nothing is taken, when there is no lock.
bool RemoveClientLock();
// Whether there is an object or a lock.
bool IsServerInUse();

// A base of every object that clients hold.
class Counted {
 public:
  Counted() { LockServer(); }
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 protected:
  ~Counted() { UnlockServer(); }
};

// The full path of the server's file.
std::wstring ServerPath();

}  // namespace qdclgl::automation
