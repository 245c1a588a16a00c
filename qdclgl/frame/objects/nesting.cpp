#include "qdclgl/frame/objects/nesting.h"

#include <atomic>
#include <string>
#include <vector>

namespace qdclgl {

namespace {

thread_local int nesting = 0;

// The levels of the copy under way, and what it has made.
thread_local int copying = 0;
thread_local int copies = 0;

// Objects that wait for their end, which the outermost free brings. Plain data: a thread that ends
// runs no destructor for it.
thread_local int freeing = 0;
thread_local std::vector<const Object*>* waiting = nullptr;

}  // namespace

NestingLevel::NestingLevel() {
  if (nesting == kDeepestNesting) RaiseError(error_number::kOutOfStackSpace);
  ++nesting;
}

NestingLevel::~NestingLevel() { --nesting; }

CopyLevel::CopyLevel() {
  if (copying == 0) copies = 0;
  CountElement();
  ++copying;
}

CopyLevel::~CopyLevel() { --copying; }

void CopyLevel::CountElement() {
  if (copies == kMostCopies) {
    throw Error(error_number::kOutOfMemory, "QDCLGL",
                "A copy has more than " + std::to_string(kMostCopies) + " objects.");
  }
  ++copies;
}

std::uint16_t detail::NumberThisThread() noexcept {
  static std::atomic<std::uint16_t> last = 0;
  while (thread_number == 0) thread_number = ++last;
  return thread_number;
}

void Object::RaiseWrongThread() const {
  throw Error(error_number::kWrongThread, std::string(ClassName()),
              "The object belongs to another thread, which made it.");
}

void Object::Free() const {
  if (freeing == kDeepestNesting) {
    if (waiting == nullptr) waiting = new std::vector<const Object*>;
    waiting->push_back(this);
    return;
  }
  ++freeing;
  delete this;
  if (freeing == 1 && waiting != nullptr) {
    while (!waiting->empty()) {
      const Object* next = waiting->back();
      waiting->pop_back();
      delete next;
    }
    delete waiting;
    waiting = nullptr;
  }
  --freeing;
}

}  // namespace qdclgl
