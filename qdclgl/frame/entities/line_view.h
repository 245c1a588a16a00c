// Lines of a document: views that share one row of the document's tree, and lists of them.
#pragma once

#include "qdclgl/frame/entities/row_view.h"
#include "qdclgl/frame/entities/walkers.h"

namespace qdclgl {

// A line. It holds no data of its own: what is written goes into the document's row and sets the
// flag that the document sees. A walk makes one for each line, so that a line is one object, and
// what Properties gives out a second one only when someone asks for it.
class LineView : public RowView {
  QD_BASE_MEMBERS(RowView)

 public:
  QD_PROPERTY(Get, Boolean, Modified, "Whether the line or anything below it was written.")
  QD_INHERITED(Properties)

  // Binds the view to `dict` itself and to `flag`.
  void Attach(Ref<Dictionary> dict, Ref<ChangeFlag> flag) {
    RowView::Attach(std::move(dict), true, std::move(flag), 0);
  }
};

// A list of lines, as a view over a Vector of rows and the flag of the list. Indices run from 1.
class LineListBase : public Object {
  QD_BASE_MEMBERS(Object)

 public:
  QD_METHOD(
      void, Add, (Variant index = Missing),
      "Puts a new empty line at the end, or at a position; the later lines move up, their "
      "change flags stay. Error 13 for a position that is no whole number, error 9 for one that "
      "is neither a line's nor the one behind the last, error 6 beyond 1,000,000 lines.")
  QD_METHOD(void, Remove, (Long index), "Removes a line and its change flag.")
  QD_PROPERTY(GetLet, Long, Count,
              "The number of lines. A write adds empty lines or cuts lines off the end, and marks "
              "the list modified in any case. Error 9 for a negative number, error 6 beyond "
              "1,000,000 lines; nothing changes then.")
  QD_PROPERTY(Get, Boolean, Modified, "Whether the list or any line of it was written.")

  // Binds the view to the list itself and to its flag.
  void Attach(const Ref<Vector>& vector, const Ref<ChangeFlag>& flag);

 protected:
  // Puts a line at a position.
  virtual void Insert(Long index, const Ref<Dictionary>& line);

  // The list. Error 91 for a view that was never bound.
  const Ref<Vector>& Lines() const;

  Ref<Vector> m_Vector;
  Ref<ChangeFlag> m_Flag;
};

template <class View>
class LineList : public LineListBase {
  QD_BASE_MEMBERS(LineListBase)

 public:
  QD_INHERITED(Add)
  QD_METHOD(Ref<Enumerator>, NewEnum, (),
            "The lines in order, each with the change flag of its position.")
  QD_INHERITED(Remove)
  QD_INHERITED(Count)
  QD_INHERITED(Modified)

  // The lines in order, for C++ callers: `for (auto& line : lines)`. The line lives until the loop
  // moves on; keep it with Ref<T>(&line).
  using Iterator = ElementIterator<View, VectorWalk<View>>;
  Iterator begin() { return Iterator(VectorWalk<View>(Lines(), m_Flag)); }
  std::default_sentinel_t end() const { return {}; }
};

template <class View>
Ref<Enumerator> LineList<View>::NewEnum() {
  auto walker = Make<VectorWalker<View>>();
  walker->Init(Lines(), m_Flag);
  return EnumFactory().CreateEnum(walker);
}

// A view of the row `dict` that reports to `flag`.
template <class View>
Ref<View> ViewOf(const Ref<Dictionary>& dict, const Ref<ChangeFlag>& flag) {
  auto line = Make<View>();
  line->Attach(dict, flag);
  return line;
}

}  // namespace qdclgl
