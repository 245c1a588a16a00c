// The tree of modified flags beside the tree of rows.
//
// A node answers for itself and for everything below it. A child is known by its position or, where
// it was made so, by a text key; asking for a child makes it. The flags are separate from the
// modified state of the Dictionaries.
#pragma once

#include "frame/collection.h"

namespace qdclgl {

class ChangeFlag final : public Object {
 public:
  std::string_view ClassName() const override { return "ChangeFlag"; }

  // Puts a new child before position `Index`, under the key of that position; does nothing while
  // there are fewer children. Error 457 when a child has that key already.
  void Insert(Long Index);
  Ref<Enumerator> NewEnum();
  // Removes the child at a position or under a key, if there is one. The node is modified after it
  // in any case.
  void Remove(const Variant& Key);
  // Clears this node and all below it.
  void Reset();
  // The child at a position (children are added up to it) or under a key (made on first use).
  // Nothing for a position below 1.
  Ref<ChangeFlag> Item(const Variant& Key);
  // Whether this node or any node below it is modified.
  Boolean Modified() const;
  // Sets this node alone: False leaves the children as they are.
  void Modified(Boolean value) { m_Modified = value; }
  // This node alone.
  Boolean PrivateModified() const { return m_Modified; }

 private:
  static Variant MakeKey(const Variant& Key);
  Collection& Children();

  Boolean m_Modified = false;
  Ref<Collection> m_Children;  // made with the first child
};

}  // namespace qdclgl
