// Change tracking shared by the containers of the data tree.
//
// A container keeps two records. `modified` is its own answer, cleared whenever tracking is set
// anew. `touched` is what a container above it asks for: it is cleared only by that owner, so that
// a short-lived view which binds itself to a row (and sets the row's tracking) can't make the
// owner forget an edit.
#pragma once

#include "qdclgl/frame/objects/object.h"

namespace qdclgl {

class Tracked : public Object {
 public:
  bool touched() const { return touched_; }

  // Whether this container or any container below it was edited since the owner last cleared it.
  // Error 28 for a tree that is nested too deep (or holds itself).
  bool TouchedWithin() const;
  // The owner's reset: clears the record here and below.
  void ClearTouched();

 protected:
  explicit Tracked(Container container) : Object(container) {}

  void MarkEdited() {
    modified_ = true;
    touched_ = true;
  }
  bool own_modified() const { return modified_; }
  void ClearOwnModified() { modified_ = false; }

  // The values that may be containers in turn.
  virtual std::span<const Variant> Elements() const = 0;

  bool AnyElementTouched() const;
  void ClearElements();

 private:
  bool modified_ = false;
  bool touched_ = false;
};

}  // namespace qdclgl
