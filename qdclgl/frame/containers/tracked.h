// Change tracking shared by the containers of the data tree.
//
// A container keeps three records. `modified` is its own answer, cleared whenever tracking is set
// anew. `touched` is what a container above it asks for: it is cleared only by that owner, so that
// a short-lived view which binds itself to a row (and sets the row's tracking) can't make the
// owner forget an edit. `written` is for a container that was filled from somewhere else: whether
// anything was written into it since.
#pragma once

#include "qdclgl/frame/objects/object.h"

namespace qdclgl {

class Tracked : public Object {
 public:
  bool touched() const { return (records_ & kTouched) != 0; }

  // Whether this container or any container below it was edited since the owner last cleared it.
  // Error 28 for a tree that is nested too deep (or holds itself).
  bool TouchedWithin() const;
  // The owner's reset: clears the record here and below.
  void ClearTouched();

  // Whether this container or any below it was filled and then written into. Error 28 as above.
  bool WrittenWithin() const;
  // Ends the filling of a container: all three records are clear, here only.
  void EndFilling() {
    records_ = 0;
    filled_ = true;
  }

 protected:
  explicit Tracked(Container container) : Object(container) {}

  void MarkEdited() { records_ = kModified | kTouched | kWritten; }
  bool own_modified() const { return (records_ & kModified) != 0; }
  void ClearOwnModified() { Clear(kModified); }

  // The values that may be containers in turn.
  virtual std::span<const Variant> Elements() const = 0;

  bool AnyElementTouched() const { return AnyElement(&Tracked::TouchedWithin); }
  void ClearElements();

 private:
  static constexpr std::uint8_t kModified = 1, kTouched = 2, kWritten = 4;

  void Clear(std::uint8_t record) { records_ = static_cast<std::uint8_t>(records_ & ~record); }
  bool AnyElement(bool (Tracked::*holds)() const) const;

  std::uint8_t records_ = 0;
  bool filled_ = false;
};

}  // namespace qdclgl
