// An operation on books, done again and again, each time with the database failing at another
// place, until it is done without.
//
// Whatever happens: what is reported as done is there, wholly; what is refused is not there at all,
// not even when the books are opened again, and can be done again; what is reported as unknown, and
// what a process was at when it ended, or the power failed, is there wholly or not at all.
#pragma once

#include <functional>
#include <string>

namespace qdclgl::server::testing {

struct SweptOperation {
  std::string name;
  // Puts the books in front of the operation, with no connection to them open.
  std::function<void()> restore;
  // Does it; the name of the refusal, "none" when it is done.
  std::function<std::string()> act;
  // All of the books that the operation can change.
  std::function<std::string()> state;
  // What the books' own check finds.
  std::function<std::string()> check;
};

// With every fault that a SQLite disk can have. Returns how many places were swept.
int SweepDisk(const SweptOperation& operation);

class CuttingProxy;
// With the connection to PostgreSQL cut before and behind each request.
int SweepConnection(CuttingProxy& proxy, const SweptOperation& operation);

}  // namespace qdclgl::server::testing
