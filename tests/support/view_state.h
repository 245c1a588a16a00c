// The state of views on the data tree as text: the row, the Dictionary's record of edits, the
// flags.
#pragma once

#include <string>

#include "qdclgl/frame/entities/row_view.h"
#include "qdclgl/frame/entities/walkers.h"
#include "tests/support/state_text.h"

namespace qdclgl::testing {

// A node and all below it: "*" for a node that is modified itself, "+" for one that is modified
// below only, "-" for one that is not modified; then its children in brackets.
inline std::string FlagText(ChangeFlag& flag) {
  std::string text = flag.PrivateModified() ? "*" : flag.Modified() ? "+" : "-";
  std::string children;
  const Ref<Enumerator> enumerator = flag.NewEnum();
  Variant child;
  while (enumerator->Next(child)) {
    children += (children.empty() ? "" : " ") + FlagText(*child.As<ChangeFlag>());
  }
  return children.empty() ? text : text + "[" + children + "]";
}

// The row of a view, and whether its Dictionary and its flag tell of edits.
inline std::string State(const RowView& view) {
  const Ref<Properties> bag = view.Properties();
  return StateText(Variant(bag->Dictionary())) + (bag->Modified() ? " modified" : "") +
         (bag->ChangeFlag()->Modified() ? " flagged" : "");
}

// A list of rows and the flags beside it.
inline std::string State(const Ref<Vector>& rows, const Ref<ChangeFlag>& flag) {
  return StateText(Variant(rows)) + " " + FlagText(*flag);
}

}  // namespace qdclgl::testing
