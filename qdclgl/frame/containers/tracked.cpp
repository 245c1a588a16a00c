#include "qdclgl/frame/containers/tracked.h"

#include <algorithm>

#include "qdclgl/frame/objects/nesting.h"
#include "qdclgl/frame/objects/variant.h"

namespace qdclgl {

namespace {

Tracked* TrackedIn(const Variant& value) {
  Object* object = value.IsObject() ? value.ObjectPointer() : nullptr;
  const bool tracked = object != nullptr && object->container() != Object::Container::kNone;
  return tracked ? static_cast<Tracked*>(object) : nullptr;
}

}  // namespace

bool Tracked::TouchedWithin() const { return touched() || AnyElementTouched(); }

bool Tracked::WrittenWithin() const {
  return (filled_ && (records_ & kWritten) != 0) || AnyElement(&Tracked::WrittenWithin);
}

void Tracked::ClearTouched() {
  Clear(kTouched);
  ClearElements();
}

bool Tracked::AnyElement(bool (Tracked::*holds)() const) const {
  const std::span<const Variant> elements = Elements();
  if (elements.empty()) return false;
  const NestingLevel level;
  return std::any_of(elements.begin(), elements.end(), [holds](const Variant& element) {
    const Tracked* tracked = TrackedIn(element);
    return tracked != nullptr && (tracked->*holds)();
  });
}

void Tracked::ClearElements() {
  const std::span<const Variant> elements = Elements();
  if (elements.empty()) return;
  const NestingLevel level;
  for (const Variant& element : elements) {
    if (Tracked* tracked = TrackedIn(element)) tracked->ClearTouched();
  }
}

}  // namespace qdclgl
