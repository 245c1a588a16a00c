// The tree of modified flags beside the tree of rows.
//
// A node answers for itself and for everything below it. A child is known by its position or, where
// it was made so, by a text key, which ignores case; asking for a child makes it. The flags are
// separate from the modified state of the Dictionaries.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "qdclgl/frame/objects/enumeration.h"

namespace qdclgl {

class ChangeFlag final : public Object {
 public:
  std::string_view ClassName() const override { return "ChangeFlag"; }

  // Puts a new child before position `Index`, under the key of that position; does nothing while
  // there are fewer children. Error 457 when a child has that key already, error 9 below 1.
  void Insert(Long Index);
  // The children in order.
  Ref<Enumerator> NewEnum();
  // Removes the child at a position or under a key, if there is one. The node is modified after it
  // in any case.
  void Remove(const Variant& Key);
  // Clears this node and all below it.
  void Reset();
  // The child at a position (children are added up to it) or under a key (made on first use).
  // Nothing for a position below 1.
  Ref<ChangeFlag> Item(const Variant& Key);
  // The same for a position.
  Ref<ChangeFlag> At(Long Position) {
    if (Position < 1) return Nothing;
    const auto place = static_cast<std::size_t>(Position - 1);
    if (place >= ChildCount()) AddUpTo(place);
    return m_Children->flags[place];
  }
  // Whether this node or any node below it is modified.
  Boolean Modified() const;
  // Sets this node alone: False leaves the children as they are.
  void Modified(Boolean value) { m_Modified = value; }
  // This node alone.
  Boolean PrivateModified() const { return m_Modified; }

 private:
  // A document has a flag for every line, and few flags have children: they are kept apart, and
  // the keys, which only some children have, apart from them.
  struct Children {
    std::vector<Ref<ChangeFlag>> flags;
    std::vector<std::pair<String, const ChangeFlag*>> keys;  // folded

    std::size_t Find(const String& key) const;  // flags.size() when there is none
    void Remove(std::size_t position);
  };

  static String MakeKey(const Variant& Key);
  Children& ChildrenToFill();
  void AddUpTo(std::size_t place);
  std::size_t ChildCount() const { return m_Children ? m_Children->flags.size() : 0; }

  Boolean m_Modified = false;
  std::unique_ptr<Children> m_Children;  // made with the first child
};

}  // namespace qdclgl
